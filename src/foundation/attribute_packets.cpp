#include "tov/attribute_packets.h"

#include "tov/string_helpers.h"

TOVUpdateFileValues getThisPacketFileUpdatingValue(const AttributesMap& packet) {
    std::string value;
    if (!getValueofKeywordFromStringStringMap(TOVAttrItemName_DoesUploadFile, packet, value)) {
        return TOVUpdateFile_NotApplicable;
    }
    if (areStringsEqualSimple(value, TOVAttrItemValue_Any) ||
        areStringsEqualSimple(value, TOVAttrItemValue_N_A)) {
        return TOVUpdateFile_NotApplicable;
    }
    if (areStringsEqualSimple(value, TOVAttrItemValue_True) ||
        areStringsEqualSimple(value, TOVAttrItemValue_YES)) {
        return TOVUpdateFile_Yes;
    }
    if (areStringsEqualSimple(value, TOVAttrItemValue_False) ||
        areStringsEqualSimple(value, TOVAttrItemValue_NO)) {
        return TOVUpdateFile_No;
    }
    return TOVUpdateFile_NotApplicable;
}

void setThisPacketFileUpdatingValue(AttributesMap& packet, bool updatesFile) {
    packet[TOVAttrItemName_DoesUploadFile] =
        updatesFile ? TOVAttrItemValue_True : TOVAttrItemValue_False;
}

std::string getTOVServerIdFromAttributesMap(const AttributesMap& packet) {
    std::string serverId;
    getValueofKeywordFromStringStringMap(TOVAttrItemKeyword_ServerId, packet, serverId);
    return serverId;
}

void setTOVServerIdIntoAttributesMap(const std::string& serverId, AttributesMap& packet) {
    packet[TOVAttrItemKeyword_ServerId] = serverId;
}

bool getWhichOfKeysHaveDifferentValuesInPackets(const std::vector<std::string>& keys,
                                                const AttributesMap& first,
                                                const AttributesMap& second, bool anyAware,
                                                std::vector<std::string>& differing) {
    bool found = false;
    for (const std::string& key : keys) {
        const auto inFirst = first.find(key);
        if (inFirst == first.end()) {
            continue;
        }
        const auto inSecond = second.find(key);
        if (inSecond == second.end()) {
            continue;
        }
        if (areStringsEqualSimple(inFirst->second, inSecond->second)) {
            continue;
        }
        if (anyAware && (isThisTheReservedAnyValue(inFirst->second) ||
                         isThisTheReservedAnyValue(inSecond->second))) {
            continue;
        }
        differing.push_back(key);
        found = true;
    }
    return found;
}

bool getWhichKeysHaveDifferentValuesInPackets(const AttributesMap& first,
                                              const AttributesMap& second, bool anyAware,
                                              std::vector<std::string>& differing) {
    // getWhichOfKeysHaveDifferentValuesInPackets over the keys of the smaller
    // packet, walked in place: the keys are not copied into a list first, and
    // the smaller packet's own entry needs no lookup.
    const bool secondIsSmaller = first.size() >= second.size();
    const AttributesMap& smaller = secondIsSmaller ? second : first;
    const AttributesMap& larger = secondIsSmaller ? first : second;
    bool found = false;
    for (const auto& entry : smaller) {
        const auto other = larger.find(entry.first);
        if (other == larger.end()) {
            continue;
        }
        const std::string& firstValue = secondIsSmaller ? other->second : entry.second;
        const std::string& secondValue = secondIsSmaller ? entry.second : other->second;
        if (areStringsEqualSimple(firstValue, secondValue)) {
            continue;
        }
        if (anyAware &&
            (isThisTheReservedAnyValue(firstValue) || isThisTheReservedAnyValue(secondValue))) {
            continue;
        }
        differing.push_back(entry.first);
        found = true;
    }
    return found;
}
