// The factory behind createProperController, for the library's own road.
#ifndef TOV_API_FACTORY_H_
#define TOV_API_FACTORY_H_

#include <map>
#include <string>

#include "tov/TOVFunctionality.h"

class TOVActionController;
class TOVCoreDataControllers;

// A new controller for the functionality, owned by the caller, which takes
// `labeledInput` over, so that a request's text is held once on its way to
// the parser; null, with a log line and `labeledInput` untouched, for a value
// the factory does not know.
TOVActionController* createControllerTakingInput(TOVFunctionality functionality,
                                                 std::map<std::string, std::string>& labeledInput,
                                                 TOVCoreDataControllers* coreData);

#endif  // TOV_API_FACTORY_H_
