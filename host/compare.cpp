// The door of `clarivex compare`; the comparison itself has yet to move in.
#include "host/compare.h"

#include "host/errors.h"
#include "host/naming.h"

namespace clarivex {

void RunCompare(const CompareOptions& options) {
    throw RunError(InputName(options.input) + ": this build has no comparison of pictures");
}

}  // namespace clarivex
