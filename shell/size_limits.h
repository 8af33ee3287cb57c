// Whether the player's media objects enhance pictures of every size, for programs with the plug-in linked in. The video effect
// has a setting of its own for that.
#pragma once

namespace clarivex {

/// Lifts the limits on the size of pictures, or has them stand, for the media objects made from now on; each keeps what
/// stood when it was made. They stand until somebody lifts them. Lifted, pictures are enlarged on both axes and enhanced
/// whatever their size, with the same arithmetic; sides up to 8192 are tried. May be called from any thread.
void LiftSizeLimits(bool lifted);

/// Whether the next media object has its limits lifted.
bool SizeLimitsLifted();

}  // namespace clarivex
