// What is known of a film's pictures.
#pragma once

#include "host/film/film_origin.h"

namespace clarivex {

/// What is known once the first picture is decoded, which is given as the decoder gave it; all but the size and the sample
/// aspect, which are known behind the conversion.
VideoInfo DescribeFilm(const FilmOrigin& origin, AVFrame& first, const PartOptions& part);

/// Steps of the film's time base from picture to picture, on the average; at least 1.
int64_t UsualFrameLength(const VideoInfo& info);

/// A rational number that stands for something; 0:0 for others.
Ratio RatioOf(AVRational value);

}  // namespace clarivex
