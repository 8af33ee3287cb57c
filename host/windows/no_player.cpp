// The program without a player.
#include "host/errors.h"
#include "host/play.h"

namespace clarivex {

void RunPlay(const PlaySettings& /*settings*/) {
    throw RunError("play needs the Linux program; this one shows no films");
}

}  // namespace clarivex
