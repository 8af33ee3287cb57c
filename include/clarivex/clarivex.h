/*
 * libclarivex: sharpens video, corrects its lighting and enlarges it by exactly three halves, on the processor alone and
 * with the same bytes on every machine.
 *
 * One context is one stream of pictures of one size and format. Make it, hand it the pictures in the order in which they
 * are shown, and destroy it:
 *
 *     cvx_settings settings;
 *     cvx_context *context;
 *     cvx_settings_init(&settings, sizeof settings);
 *     cvx_create(width, height, CVX_FORMAT_I420, &settings, &context);
 *     cvx_output_size(context, &output_width, &output_height);
 *     for each picture: cvx_process(context, &source, &target, CVX_NO_TIME);
 *     cvx_destroy(context);
 *
 * Threads. A context belongs to one thread at a time; it may go from thread to thread between calls. Different contexts
 * know nothing of each other: they run at once on any threads, and each gives the bytes that it gives alone.
 *
 * Errors. Functions that give a cvx_result never end the program, throw or print. Below 0 it is an error: nothing was
 * changed then, and no byte of a target was written, but for CVX_ERROR_MEMORY where it says so.
 *
 * Strings are UTF-8 and never freed.
 */
#ifndef CLARIVEX_CLARIVEX_H
#define CLARIVEX_CLARIVEX_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__) && !defined(_WIN32)
#define CVX_API __attribute__((visibility("default")))
#else
#define CVX_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version that a program is compiled with, as one number and as text. The library that it runs with tells its own by
 * cvx_version: programs run with every library of the same major version that is not older. */
#define CVX_VERSION_MAJOR 1
#define CVX_VERSION_MINOR 50
#define CVX_VERSION_PATCH 0
#define CVX_VERSION (CVX_VERSION_MAJOR * 1000000 + CVX_VERSION_MINOR * 1000 + CVX_VERSION_PATCH)
#define CVX_VERSION_TEXT "1.50.0"

/* The version of the library, made as CVX_VERSION and CVX_VERSION_TEXT are. Any thread. */
CVX_API int32_t cvx_version(void);
CVX_API const char* cvx_version_text(void);

/* What a function comes to: CVX_OK or an error below 0. */
typedef int32_t cvx_result;
enum {
    CVX_OK = 0,
    CVX_ERROR_NULL = -1,            /* a pointer is null that must not be; planes that a format has count too */
    CVX_ERROR_STRUCT_SIZE = -2,     /* struct_size is not that of a cvx_settings that this library knows */
    CVX_ERROR_FORMAT = -3,          /* the format is none of CVX_FORMAT_… */
    CVX_ERROR_SIZE = -4,            /* a side of the picture is below CVX_SMALLEST_SIDE or above CVX_LARGEST_SIDE */
    CVX_ERROR_SHARPNESS = -5,       /* sharpness is outside 0 … 2, or no number */
    CVX_ERROR_SETTING = -6,         /* a switch is neither 0 nor 1, or a choice is none of its constants */
    CVX_ERROR_PIXEL_ASPECT = -7,    /* pixel_aspect is outside 1/64 … 64, or no number */
    CVX_ERROR_INSTRUCTION_SET = -8, /* this processor or operating system cannot run the instruction set asked for */
    CVX_ERROR_STRIDE = -9,          /* a stride is shorter than its row, or reaches beyond the address space */
    CVX_ERROR_OVERLAP = -10,        /* rows of the target overlap each other or the source */
    CVX_ERROR_MEMORY = -11          /* memory is short; the call can be tried again */
};

/* What a result means, in a line of English without a full stop; "unknown result" for a number that is none. Any thread. */
CVX_API const char* cvx_error_text(cvx_result result);

/* Layouts of 8-bit samples in video range, progressive. Chroma planes have half of luma's columns and rows, both rounded
 * up; planes are listed in the order in which cvx_source and cvx_target have them. */
enum {
    CVX_FORMAT_I420 = 0, /* Y, U, V. As the plug-in has it for IYUV: gains and caption take U for V and V for U */
    CVX_FORMAT_YV12 = 1, /* Y, V, U */
    CVX_FORMAT_NV12 = 2, /* Y, then one plane of U and V by turns. The samples of YV12 */
    CVX_FORMAT_YUY2 = 3  /* one plane of rows Y0 U Y1 V; an odd width has a whole last pair */
};

/* Sides of a source picture, in luma samples. */
#define CVX_SMALLEST_SIDE 16
#define CVX_LARGEST_SIDE 8192

/* Whether pictures are enlarged. Those less than 32 wide never are, and pass unchanged. */
enum {
    CVX_MODE_NEVER = 0,
    CVX_MODE_AUTO = 1, /* where the processor is fast enough for it; see cvx_create */
    CVX_MODE_ALWAYS = 2
};

/* Which pictures are enlarged and enhanced. With the plug-in's limits those of 1,238,400 samples and more, 2048 columns or
 * 1022 rows are not enlarged whole, as in a player: they stand at the upper left of the output, over black. */
enum {
    CVX_LIMITS_LIFTED = 0, /* all */
    CVX_LIMITS_PLUGIN = 1
};

/* What becomes of the columns that enlarging adds to reach a multiple of 8. */
enum {
    CVX_PADDING_CROP = 0, /* they are left out: outputs are 3/2 wide, rounded down to even */
    CVX_PADDING_KEEP = 1  /* as the plug-in: they repeat the last column, and are black in YUY2 */
};

/* The instructions that pictures are made with. All give the same bytes. */
enum {
    CVX_INSTRUCTIONS_AUTO = 0, /* the widest that run here */
    CVX_INSTRUCTIONS_SCALAR = 1,
    CVX_INSTRUCTIONS_SSE2 = 2,
    CVX_INSTRUCTIONS_AVX2 = 3,
    CVX_INSTRUCTIONS_AVX512 = 4
};

/* How a stream is enhanced. Fill it by cvx_settings_init, then change what is to be otherwise. */
typedef struct cvx_settings {
    uint32_t struct_size;    /* bytes of the structure, as cvx_settings_init sets it */
    float sharpness;         /* 0, none, … 2; default 1 */
    int32_t lighting;        /* 1: black, white and saturation follow the film; default 1 */
    int32_t mode;            /* CVX_MODE_…; default CVX_MODE_ALWAYS */
    int32_t noise;           /* 1: a little film-like noise; default 1 */
    int32_t caption;         /* 1: a caption fades in and out over the first 276 frames; default 0 */
    int32_t limits;          /* CVX_LIMITS_…; default CVX_LIMITS_LIFTED */
    int32_t padding;         /* CVX_PADDING_…; default CVX_PADDING_CROP */
    int32_t instruction_set; /* CVX_INSTRUCTIONS_…; default CVX_INSTRUCTIONS_AUTO */
    float pixel_aspect;      /* width of a source pixel over its height, 1/64 … 64: the caption's shape; default 1 */
} cvx_settings;

/* Fills `settings` with the defaults.
 *
 * struct_size  sizeof(cvx_settings) of the program
 * errors       CVX_ERROR_NULL, CVX_ERROR_STRUCT_SIZE; any thread */
CVX_API cvx_result cvx_settings_init(cvx_settings* settings, size_t struct_size);

/* The size of the output for sources of a size, before there is a context: what cvx_output_size tells of one.
 *
 * settings               null for the defaults
 * output_width, _height  in luma samples. Enlarged: (width · 3/2), rounded as `padding` says, and (height without its odd
 *                        row) · 3/2; otherwise the source's
 * errors                 as cvx_create but for the format; any thread */
CVX_API cvx_result cvx_predict_output_size(int32_t width, int32_t height, const cvx_settings* settings,
                                           int32_t* output_width, int32_t* output_height);

/* One stream and all that it owns. */
typedef struct cvx_context cvx_context;

/* Makes a context for a stream of pictures, to be given to cvx_destroy.
 *
 * width, height  of the source in luma samples, CVX_SMALLEST_SIDE … CVX_LARGEST_SIDE, odd ones too
 * format         CVX_FORMAT_…, of source and target
 * settings       null for the defaults; read during the call only
 * context        receives the context, null on an error
 * time           a few milliseconds. With CVX_MODE_AUTO the first call of a process that needs it measures the processor
 *                for about 200 ms, and the thread has a raised priority meanwhile
 * errors         all but CVX_ERROR_STRIDE and CVX_ERROR_OVERLAP; any thread */
CVX_API cvx_result cvx_create(int32_t width, int32_t height, int32_t format, const cvx_settings* settings,
                              cvx_context** context);

/* Other settings from the next frame on. The stream goes on: lighting and caption stay where they are. The size of the
 * output may change with mode, limits and padding: ask cvx_output_size behind it.
 *
 * settings  null for the defaults
 * errors    as cvx_settings' fields say, and CVX_ERROR_NULL, CVX_ERROR_STRUCT_SIZE: all settings are then as before */
CVX_API cvx_result cvx_set_settings(cvx_context* context, const cvx_settings* settings);

/* The size of the target in luma samples. Errors: CVX_ERROR_NULL. */
CVX_API cvx_result cvx_output_size(const cvx_context* context, int32_t* width, int32_t* height);

/* A picture that is read, and one that is written: the upper left sample of each plane of the format, in its order, and
 * the bytes from a row to the one below it. Entries beyond the format's planes are not looked at.
 *
 * A stride may be negative, for rows that go upwards in memory, and its rows may stand apart; it is at least as long as a
 * row. Pointers need no alignment. Of a source no byte before its first row or behind its last is read; what stands
 * between its rows may be read and counts for nothing. Of a target just the picture's own samples are written. */
typedef struct cvx_source {
    const uint8_t* plane[3];
    ptrdiff_t stride[3];
} cvx_source;
typedef struct cvx_target {
    uint8_t* plane[3];
    ptrdiff_t stride[3];
} cvx_target;

/* Enhances the next picture of the stream into `target`. Every sample of it is written. What is not enhanced is the
 * source's at the same place, or black where the source has none.
 *
 * source  a picture of the context's size and format
 * target  one of cvx_output_size; its rows overlap neither each other nor the source's
 * time    when the picture is shown, in nanoseconds, or CVX_NO_TIME. Nothing depends on it today: lighting and caption count
 *         each picture as a 24th of a second, as the plug-in does
 * memory  some is taken with the first picture, after a change of settings and while the caption shows; none otherwise
 * errors  CVX_ERROR_NULL, CVX_ERROR_STRIDE, CVX_ERROR_OVERLAP; CVX_ERROR_MEMORY, behind which the samples of the target are
 *         undefined and lighting, noise and caption may be a picture further */
#define CVX_NO_TIME INT64_MIN
CVX_API cvx_result cvx_process(cvx_context* context, const cvx_source* source, const cvx_target* target, int64_t time);

/* Begins a new stream, as behind a seek: the context gives what a new one with its settings gives. Takes as long as
 * cvx_create. Errors: CVX_ERROR_NULL, CVX_ERROR_MEMORY (the stream then goes on). */
CVX_API cvx_result cvx_reset(cvx_context* context);

/* Ends a stream and frees what it owns; null is ignored. Any thread, none in another call with the context. */
CVX_API void cvx_destroy(cvx_context* context);

#ifdef __cplusplus
}
#endif

#endif /* CLARIVEX_CLARIVEX_H */
