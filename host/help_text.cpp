// What --help prints.
#include "host/command_line.h"

namespace clarivex {

const char* const helpText =
    R"(clarivex: sharpens, corrects and enlarges video by 3/2, as the plug-in does in a player

  clarivex enhance [options] IN OUT    enhance a Y4M video (8-bit 4:2:0)
  clarivex caption [options] OUT       the opening caption alone, over grey: a Y4M video of one frame
  clarivex tune [options] TARGET       look for engine settings that restore a reduced bitmap best; for development
  clarivex info                        version, processor, instruction set and speed
  clarivex --help | --version

IN, OUT and TARGET are files; - is standard input or output.

Options of enhance:
  --format yv12|iyuv|yuy2    samples handed to the plug-in; yuy2 writes 4:2:2; default yv12
  --mode never|auto|always   when to enlarge; auto: if the processor is fast enough; default always
  --sharpness 0..2           crispness of edges; default 1
  --lighting on|off          automatic lighting control; default on
  --hd allow|bypass          bypass: pictures of 589824 samples (1024x576) or more pass unchanged; default allow
  --simd scalar|sse2|avx2|avx512|auto
                             instruction set of the kernels; default auto
  --frames N                 stop after N frames
  --caption on|off           the plug-in's opening caption over the first 276 frames; default off
  --plugin PATH              Windows: go through this library instead of the code linked in
  --timing                   print the time spent inside ProcessOutput
  --quiet                    no notes, no progress, no summary

Options of caption:
  --frame N                  frame of the stream: it fades in until 72, out from 144, and is gone at 276; default 100
  --size WxH                 size of the picture; default 960x720
  --aspect N:D               width to height of a sample; 1:64 to 64:1; default 1:1

Options of tune, which prints the error of each attempt that improves, then the settings, and leaves in.bmp (the picture
reduced) and out.bmp (enlarged again with the best settings) in the current folder, in place of any that are there:
  --attempts N               number of attempts; default 200
  --seed S                   another seed makes other attempts; default 1
  --scale 1|3/2|2            enlargement that is tuned; default 3/2
  --quiet                    no progress, no summary

Exit codes: 0 done, 1 the run failed, 2 wrong use.

In a pipe:
  ffmpeg -i IN -pix_fmt yuv420p -f yuv4mpegpipe - | clarivex enhance - - | ffmpeg -i - OUT
)";

}  // namespace clarivex
