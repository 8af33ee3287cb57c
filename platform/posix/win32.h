// The Windows names and signatures that the floors above use, for POSIX systems. It holds what they call and no more.
#pragma once

#include "platform/posix/base_types.h"
#include "platform/posix/com.h"
#include "platform/posix/media.h"
#include "platform/posix/system.h"
