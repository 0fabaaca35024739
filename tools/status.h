// Library statuses as words, for messages: one table of names and meanings.
#pragma once

#include <string>

namespace orucv_tool {

// "step" for oruStsStep; nullptr for a value the library does not return.
const char* status_name(int status);
// "a row step is not acceptable (too small, or not a whole number of pixels)".
const char* status_meaning(int status);
// "step: a row step is not acceptable ... (status -14)"; unknown values are
// described as such with their number.
std::string describe_status(int status);

}  // namespace orucv_tool
