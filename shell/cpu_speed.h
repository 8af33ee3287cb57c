// How fast the processor is, for the programs above the media object.
#pragma once

#include "pipeline/cpu_speed.h"
