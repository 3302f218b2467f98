#include "request_names.h"

#include <algorithm>
#include <set>

#include "json/json_types.h"
#include "json_files.h"
#include "tov/vocabulary.h"

namespace tovcli {

namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string textOf(const tovjson::Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

class NameCheck {
public:
    explicit NameCheck(const TOV_DMStructure& dataModel) : dataModel(dataModel) {
        for (const TOV_DMStructureObject& object : dataModel.getAllStructureObjects()) {
            typeNames.push_back(object.getName());
        }
    }

    // An object of the request: its "objectType" (or the request's own, for
    // the packets of the request itself and of its family) and the packets
    // of `packetKeys`.
    void checkObject(const tovjson::Value& object, const std::string& inheritedType,
                     std::initializer_list<const char*> packetKeys) {
        std::string type = inheritedType;
        const tovjson::Value* named = findString(object, TOVTransitionJson_ObjectType);
        if (named != nullptr) {
            type = textOf(*named);
            checkType(type);
        }
        const TOV_DMStructureObject* described = describedType(type);
        for (const char* key : packetKeys) {
            const auto packet = object.FindMember(key);
            if (packet == object.MemberEnd() || !packet->value.IsObject() || described == nullptr) {
                continue;
            }
            for (const auto& member : packet->value.GetObject()) {
                checkAttribute(*described, textOf(member.name));
            }
        }
    }

    // The objects under `key`, each an object that may hold "attributes".
    void checkObjects(const tovjson::Value& request, const char* key, const std::string& type) {
        const auto objects = request.FindMember(key);
        if (objects == request.MemberEnd() || !objects->value.IsObject()) {
            return;
        }
        for (const auto& object : objects->value.GetObject()) {
            if (object.value.IsObject()) {
                checkObject(object.value, type, {"attributes"});
            }
        }
    }

    std::vector<std::string> sentences;

private:
    const TOV_DMStructureObject* describedType(const std::string& type) const {
        for (const TOV_DMStructureObject& object : dataModel.getAllStructureObjects()) {
            if (dataModel.areObjectTypesThatShouldBeConsideredEqual(object.getName(), type)) {
                return &object;
            }
        }
        return nullptr;
    }

    void checkType(const std::string& type) {
        if (describedType(type) != nullptr || !told.insert("type\n" + type).second) {
            return;
        }
        const std::string nearest =
            nearestWord(type, typeNames, std::max<std::size_t>(2, type.size() / 3));
        tell("object type " + quoted(type) + " is none that the data model describes", nearest);
    }

    void checkAttribute(const TOV_DMStructureObject& object, const std::string& attribute) {
        if (attribute == TOVAttrItemKeyword_ServerId ||
            attribute == TOVAttrItemName_DoesUploadFile) {
            return;
        }
        std::vector<std::string> names;
        for (const auto* attributes :
             {&object.getPrimaryAttributes(), &object.getSecondaryAttributes()}) {
            for (const TOV_DMAttribute& described : *attributes) {
                names.push_back(described.getName());
            }
        }
        if (std::find(names.begin(), names.end(), attribute) != names.end() ||
            !told.insert(object.getName() + "\n" + attribute).second) {
            return;
        }
        const std::string nearest =
            nearestWord(attribute, names, std::max<std::size_t>(2, attribute.size() / 3));
        tell("attribute " + quoted(attribute) + " is none that the data model describes for " +
                 object.getName(),
             nearest);
    }

    void tell(const std::string& sentence, const std::string& nearest) {
        sentences.push_back("the request's " + sentence +
                            (nearest.empty() ? "" : "; did you mean " + quoted(nearest) + "?"));
    }

    const TOV_DMStructure& dataModel;
    std::vector<std::string> typeNames;
    std::set<std::string> told;
};

}  // namespace

std::vector<std::string> unknownNamesInRequest(const std::string& request,
                                               const TOV_DMStructure& dataModel) {
    if (!dataModel.existAnyInfo()) {
        return {};
    }
    tovjson::Document json;
    json.Parse<rapidjson::kParseIterativeFlag>(request.c_str(), request.size());
    if (json.HasParseError() || !json.IsObject()) {
        return {};
    }
    NameCheck check(dataModel);
    // An edit, a save or an options request names one object, its family and
    // its ancestors; a link creation names an ancestor and a descendant.
    check.checkObject(json, {},
                      {TOVTransitionJson_InitialAttributes, TOVTransitionJson_TargetAttributes});
    const tovjson::Value* type = findString(json, TOVTransitionJson_ObjectType);
    check.checkObjects(json, "membersOfFamily", type == nullptr ? std::string() : textOf(*type));
    check.checkObjects(json, "manualLinkAncestors", {});
    for (const char* end : {"ancestor", "descendant"}) {
        const auto object = json.FindMember(end);
        if (object != json.MemberEnd() && object->value.IsObject()) {
            check.checkObject(object->value, {}, {"attributes"});
        }
    }
    return check.sentences;
}

}  // namespace tovcli
