#include "status.h"

#include "orucv.h"

namespace orucv_tool {
namespace {

struct StatusWord {
    int status;
    const char* name;
    const char* meaning;
};

const StatusWord kStatuses[] = {
    {oruStsNoOperation, "no operation", "there was nothing to process"},
    {oruStsOk, "ok", "success"},
    {oruStsError, "error", "an internal step failed"},
    {oruStsBadLine, "bad line", "the line to sample could not be set up"},
    {oruStsBadArg, "bad argument", "an argument value is not one of the allowed ones"},
    {oruStsSize, "size", "the region or kernel size is not acceptable (or, for accumulators, a row step)"},
    {oruStsNullPointer, "null pointer", "a required pointer is null"},
    {oruStsMemAlloc, "memory", "memory could not be obtained"},
    {oruStsOutOfRange, "out of range", "a numeric argument lies outside its range"},
    {oruStsDataType, "data type", "the data type or mode code is not supported"},
    {oruStsStep, "step", "the row step is smaller than the row or otherwise not acceptable"},
    {oruStsContextMismatch, "context mismatch", "the state object does not fit the call"},
    {oruStsCoi, "channel of interest", "the channel of interest is not 1, 2 or 3"},
    {oruStsNumChannels, "channels", "the number of channels is not supported"},
    {oruStsNotEvenStep, "step not even", "a row step is not a whole multiple of the element size"},
};

const StatusWord* find(int status) {
    for (const StatusWord& s : kStatuses)
        if (s.status == status) return &s;
    return nullptr;
}

}  // namespace

const char* status_name(int status) {
    const StatusWord* s = find(status);
    return s ? s->name : nullptr;
}

const char* status_meaning(int status) {
    const StatusWord* s = find(status);
    return s ? s->meaning : nullptr;
}

std::string describe_status(int status) {
    const StatusWord* s = find(status);
    const std::string number = "(status " + std::to_string(status) + ")";
    if (!s) return "unknown status " + number;
    return std::string(s->name) + ": " + s->meaning + " " + number;
}

}  // namespace orucv_tool
