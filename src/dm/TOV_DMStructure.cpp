#include "tov/TOV_DMStructure.h"

TOV_DMStructure::TOV_DMStructure() = default;

void TOV_DMStructure::clearAllInfo() {}

bool TOV_DMStructure::existAnyInfo() const {
    return false;
}

void TOV_DMStructure::printContentsDBG(TOVLogger* /*logger*/) {}
