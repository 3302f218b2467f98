#include "json_output.h"

#include <vector>

namespace tovcli {

namespace {

// Writes a scalar, or opens a container; true when a container was opened.
bool writeScalarOrOpen(JsonWriter& writer, const tovjson::Value& value) {
    switch (value.GetType()) {
        case rapidjson::kObjectType:
            writer.StartObject();
            return true;
        case rapidjson::kArrayType:
            writer.StartArray();
            return true;
        case rapidjson::kStringType:
            writer.String(value.GetString(), value.GetStringLength());
            return false;
        case rapidjson::kNumberType:
            if (value.IsInt64()) {
                writer.Int64(value.GetInt64());
            } else if (value.IsUint64()) {
                writer.Uint64(value.GetUint64());
            } else {
                writer.Double(value.GetDouble());
            }
            return false;
        case rapidjson::kTrueType:
        case rapidjson::kFalseType:
            writer.Bool(value.GetBool());
            return false;
        default:
            writer.Null();
            return false;
    }
}

}  // namespace

void writeString(JsonWriter& writer, const std::string& text) {
    writer.String(text.c_str(), static_cast<rapidjson::SizeType>(text.size()));
}

void writeValue(JsonWriter& writer, const tovjson::Value& value) {
    struct Open {
        const tovjson::Value* container;
        rapidjson::SizeType next;
    };
    std::vector<Open> open;
    if (writeScalarOrOpen(writer, value)) {
        open.push_back({&value, 0});
    }
    while (!open.empty()) {
        const tovjson::Value& container = *open.back().container;
        const rapidjson::SizeType index = open.back().next++;
        const tovjson::Value* child = nullptr;
        if (container.IsObject()) {
            if (index == container.MemberCount()) {
                writer.EndObject(container.MemberCount());
                open.pop_back();
                continue;
            }
            const auto& member = *(container.MemberBegin() + index);
            writer.Key(member.name.GetString(), member.name.GetStringLength());
            child = &member.value;
        } else {
            if (index == container.Size()) {
                writer.EndArray(container.Size());
                open.pop_back();
                continue;
            }
            child = &container[index];
        }
        if (writeScalarOrOpen(writer, *child)) {
            open.push_back({child, 0});
        }
    }
}

void writeResponseMembers(JsonWriter& writer, const TOVResponse& response) {
    writer.Key("result");
    writer.Bool(response.getGeneralResult());
    writer.Key("comment");
    writeString(writer, response.getGeneralResultComment());

    // The map's keys are written as they stand, so no two are ever the same.
    writer.Key("keywords");
    writer.StartObject();
    for (const auto& entry : response.getStringStringMapResponseWithGeneralResult()) {
        writeString(writer, entry.first);
        writeString(writer, entry.second);
    }
    writer.EndObject();

    // An empty list is written "[]", which reads back as one empty name.
    std::vector<std::string> options;
    response.collectConflictResolutionOptions(options);
    writer.Key("options");
    writer.StartArray();
    for (const std::string& option : options) {
        if (!option.empty()) {
            writeString(writer, option);
        }
    }
    writer.EndArray();

    AttributesMap initialize;
    response.collectAttrsToTriggerInitialization(initialize);
    writer.Key("initialize");
    writer.StartObject();
    for (const auto& entry : initialize) {
        writeString(writer, entry.first);
        writeString(writer, entry.second);
    }
    writer.EndObject();

    TOVMissingDataForEvaluation missing;
    response.needsReevaluation(missing);
    writer.Key("missing");
    writer.StartArray();
    if (missing.objectFamilyMembersMissing) {
        writer.String("membersOfFamily");
    }
    if (missing.manualLinkAncestorsMissing) {
        writer.String("manualLinkAncestors");
    }
    writer.EndArray();
}

std::string responseAsJson(const TOVResponse& response) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writeResponseMembers(writer, response);
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace tovcli
