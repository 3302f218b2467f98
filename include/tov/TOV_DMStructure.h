// What the host says about its data model: object types and their attributes.
#ifndef TOV_TOV_DMSTRUCTURE_H_
#define TOV_TOV_DMSTRUCTURE_H_

#include "tov/export.h"

class TOVLogger;

class TOV_API TOV_DMStructure {
  public:
    TOV_DMStructure();

    void clearAllInfo();
    // True when any object type is loaded.
    bool existAnyInfo() const;

    void printContentsDBG(TOVLogger* logger);
};

#endif  // TOV_TOV_DMSTRUCTURE_H_
