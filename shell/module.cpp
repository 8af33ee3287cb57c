// The state of the module.
#include "shell/module.h"

namespace clarivex {

ModuleState& ThisModule() {
    static constinit ModuleState state;
    return state;
}

}  // namespace clarivex
