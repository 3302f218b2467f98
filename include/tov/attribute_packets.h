// Reading, writing and comparing attribute packets, including the two
// pseudo-attributes "ServerId" and "_file_upload_".
#ifndef TOV_ATTRIBUTE_PACKETS_H_
#define TOV_ATTRIBUTE_PACKETS_H_

#include <string>
#include <vector>

#include "tov/export.h"
#include "tov/vocabulary.h"

// What an edit does to the representation file. Zero also means "no constraint"
// to the rules that compare with it, so it must stay zero.
enum TOVUpdateFileValues {
    TOVUpdateFile_NotApplicable = 0,
    TOVUpdateFile_Yes = 1,
    TOVUpdateFile_No = 2,
};

// Reads "_file_upload_": "true"/"YES" is Yes, "false"/"NO" is No, in any case;
// anything else, or no entry, is NotApplicable.
TOV_API TOVUpdateFileValues getThisPacketFileUpdatingValue(const AttributesMap& packet);
TOV_API void setThisPacketFileUpdatingValue(AttributesMap& packet, bool updatesFile);

// The value under "ServerId", or the empty string.
TOV_API std::string getTOVServerIdFromAttributesMap(const AttributesMap& packet);
TOV_API void setTOVServerIdIntoAttributesMap(const std::string& serverId, AttributesMap& packet);

// Appends to `differing` each key of the smaller packet whose values in the two
// packets differ ignoring case; with `anyAware`, "<any>" on either side is no
// difference. Keys only one packet has are never reported. True when this call
// appended a key.
TOV_API bool getWhichKeysHaveDifferentValuesInPackets(const AttributesMap& first,
                                                      const AttributesMap& second, bool anyAware,
                                                      std::vector<std::string>& differing);
// The same over the given keys, in their order.
TOV_API bool getWhichOfKeysHaveDifferentValuesInPackets(const std::vector<std::string>& keys,
                                                        const AttributesMap& first,
                                                        const AttributesMap& second, bool anyAware,
                                                        std::vector<std::string>& differing);

#endif  // TOV_ATTRIBUTE_PACKETS_H_
