// The encoder of a film's pictures: which one, and set to which quality.
#pragma once

#include <string>

#include "host/film.h"
#include "host/film/av_objects.h"

namespace clarivex {

/// Opens the encoder asked for, or the one that the container is usually written with. Throws RunError that names those
/// there are where it is missing, and the option where one is not known.
AvPointer<AVCodecContext> OpenVideoEncoder(const FilmTarget& target, const AVOutputFormat& container);

/// "H.264 by libx264".
std::string EncoderText(const AVCodecContext& encoder);

}  // namespace clarivex
