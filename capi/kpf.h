/**
 * kpf: recordings of mono video, written and read, and amplification of small movements in them,
 * for C and for every language that can call C.
 *
 * To link: `cc program.c $(pkg-config --cflags --libs kpf)`, or in CMake `find_package(kpf)` and
 * `target_link_libraries(program PRIVATE kpf::kpf)`. On Windows kpf.dll needs no other file; its
 * import library is kpf.lib (Microsoft's linker, lld-link) or libkpf.dll.a (MinGW).
 *
 * What holds for every function:
 * - Results. 0 is success, everything else a kpf_result. A call that failed has changed nothing,
 *   its outputs included, unless its comment says otherwise. kpf_error_text() says what happened.
 * - Handles (kpf_writer, kpf_reader, kpf_amplifier) are opaque and never used twice in a process:
 *   one that is null or was closed is answered with KPF_ERROR_HANDLE.
 * - Structures begin with their own size. Set every byte to 0 and `struct_size` to sizeof the
 *   structure, as the KPF_..._INIT macros do, before filling one in or having one filled in.
 * Shorter ones, of callers compiled with an older kpf.h, are taken as if zeros followed; longer
 * ones when what this library does not know is 0. A size that is no structure's is
 * KPF_ERROR_STRUCT.
 * - Names of files are UTF-8 on every system, and both `/` and, on Windows, `\` separate folders.
 *   A name without any folder means the current one.
 * - Memory stays where it was made: what the caller passes is copied or written before the call
 *   returns; what the library gives belongs to the handle it came from and ends with it.
 * - Nothing is printed, no exception leaves a function, and no signal or environment variable is
 *   touched. What the library would tell a person goes to kpf_set_log().
 * - Times are whole seconds and microseconds of the caller's epoch; by habit that of Unix, in UTC.
 * - Threads: one thread at a time uses a writer or a reader. Different handles may be used by
 *   different threads at once, and any thread may create and close. An amplifier may be fed, read
 *   and turned by several threads; they take turns.
 *
 * Stability: a program compiled against version 1.x runs with every later 1.y. Functions, constants
 * and members are added, never changed or taken away.
 */
#ifndef KPF_H
#define KPF_H

#include <stddef.h>
#include <stdint.h>

#include "kpf_types.h"

#if defined(_WIN32) && !defined(KPF_BUILD)
#define KPF_API __declspec(dllimport)
#elif defined(_WIN32)
#define KPF_API /* the DLL's exports are listed in its .def file */
#else
#define KPF_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Results and messages -------------------------------------------------------------------- */

/** Version of the library that is loaded, such as "1.0.0"; KPF_VERSION_ is that of this header. */
KPF_API const char* kpf_version(void);

/** The constant's name, such as "KPF_ERROR_WRITE", or "unknown"; for messages. Never null. */
KPF_API const char* kpf_result_name(kpf_result result);

/**
 * What went wrong in the calling thread's last call that failed, and where: function, file and
 * reason, in English, UTF-8, one line.
 *
 * Meaningful only after a call that failed, and until the thread's next call. Never null.
 */
KPF_API const char* kpf_error_text(void);

/**
 * Receives what the library has to say, a line without its line end at a time.
 *
 * It runs on the thread of the call that speaks, one line at a time in the whole process. It must
 * not call this library, throw an exception or jump out. What happened to the call itself is always
 * in its result too.
 *
 * @param level 3 an error, 4 a warning, 7 a detail.
 * @param line ends with the call of this function.
 */
typedef void (*kpf_log_callback)(int32_t level, const char* line, void* payload);

/**
 * Sets who receives the lines of the whole process; null for nobody, as at first. When this
 * returns, the callback of before is not running and will not be called again.
 */
KPF_API void kpf_set_log(kpf_log_callback callback, void* payload);

/**
 * Sets every byte of a structure to 0 and its struct_size: what the KPF_..._INIT macros do, for
 * languages that have no macros.
 *
 * @param structure any of this header's.
 * @param struct_size its size as the caller knows it, in bytes.
 * @return KPF_OK, KPF_ERROR_ARGUMENT, KPF_ERROR_STRUCT.
 */
KPF_API kpf_result kpf_struct_init(void* structure, uint32_t struct_size);

/* ---- Writing --------------------------------------------------------------------------------- */

/** A recording that is being written: a header file, and a folder of data files beside it. */
typedef struct kpf_writer kpf_writer;

/**
 * Begins a recording: writes the header file and makes the folder for the data files, which bears
 * the same name without the extension.
 *
 * @param name path of the header file, with an extension, by habit `.kpf`. Its folder must exist.
 * @param options not null.
 * @param writer receives the handle, to be closed by kpf_writer_close.
 * @return KPF_OK; KPF_ERROR_ARGUMENT or KPF_ERROR_STRUCT for the options; KPF_ERROR_NAME;
 *         KPF_ERROR_EXISTS; KPF_ERROR_OPEN, KPF_ERROR_WRITE. Of a recording that was to be replaced
 *         some may then be gone.
 */
KPF_API kpf_result kpf_writer_create(const char* name, const kpf_writer_options* options,
                                     kpf_writer** writer);

/**
 * Adds an image at the next place. When this returns KPF_OK its record is with the operating
 * system: the end of the process does not lose it.
 *
 * @param pixels rows from the top. 8 bits: a byte a pixel. 12 bits: two bytes a pixel in the
 *        machine's order, of the form of kpf_writer_options.samples; of an odd width the last
 *        column is not stored. Needs no alignment.
 * @param row_stride bytes from one row to the next, at least those of a row; 0: rows without a gap.
 * @param stamp the frame's time; null for the one by the rate: start + number / rate.
 * @return KPF_OK; KPF_ERROR_FULL; KPF_ERROR_OPEN when its data file cannot be made: it takes no
 *         place, and none after it will; KPF_ERROR_ARGUMENT for what is
 *         null, out of range, or a sample above 4095; KPF_ERROR_WRITE when this very frame did not
 *         reach the file: it keeps its place, as a lost frame, and the next may well succeed.
 */
KPF_API kpf_result kpf_writer_add_image(kpf_writer* writer, const void* pixels, size_t row_stride,
                                        const kpf_stamp* stamp);

/**
 * Adds a frame as it is to be stored: at 8 bits a byte a pixel, at 12 two pixels in three bytes, as
 * cameras deliver them under the name Mono12Packed (GigE Vision) when the width is even. Not
 * Mono12p (USB3 Vision), which shares the bytes out in another way.
 *
 * @param size bytes of the frame: width x height, or half of three times that, cut.
 * @return as kpf_writer_add_image; KPF_ERROR_ARGUMENT for another size.
 */
KPF_API kpf_result kpf_writer_add_packed(kpf_writer* writer, const void* pixels, size_t size,
                                         const kpf_stamp* stamp);

/** Keeps the next place for a frame that was lost before it came here. Results as
 * kpf_writer_add_image. */
KPF_API kpf_result kpf_writer_add_lost(kpf_writer* writer);

/** @param counts filled in. @return KPF_OK, KPF_ERROR_HANDLE, KPF_ERROR_STRUCT. */
KPF_API kpf_result kpf_writer_statistics(kpf_writer* writer, kpf_writer_counts* counts);

/**
 * Ends the recording and the handle, whatever the result but KPF_ERROR_STRUCT. Where no count was
 * announced, the header gets the true one; where one was and frames are missing, a status file
 * (name.incomplete.txt) says so.
 *
 * @param counts filled in with the last state; may be null.
 * @return KPF_OK when every announced frame was added and all of them are on disk;
 *         KPF_ERROR_INCOMPLETE when fewer were added; KPF_ERROR_WRITE when some failed, the true
 *         count could not be set, or `durable` could not be had. The last one wins.
 */
KPF_API kpf_result kpf_writer_close(kpf_writer* writer, kpf_writer_counts* counts);

/* ---- Reading --------------------------------------------------------------------------------- */

/** An open recording, perhaps one that is still being written. Nothing in it is trusted. */
typedef struct kpf_reader kpf_reader;

/**
 * Opens a recording for reading.
 *
 * @param name path of its header file.
 * @param options may be null: all 0.
 * @param reader receives the handle, to be closed by kpf_reader_close.
 * @return KPF_OK; KPF_ERROR_OPEN when the header file cannot be read; KPF_ERROR_FORMAT when it is
 *         not one; KPF_ERROR_NAME, KPF_ERROR_ARGUMENT, KPF_ERROR_STRUCT.
 */
KPF_API kpf_result kpf_reader_open(const char* name, const kpf_reader_options* options,
                                   kpf_reader** reader);

/** @param info filled in. @return KPF_OK, KPF_ERROR_HANDLE, KPF_ERROR_STRUCT. */
KPF_API kpf_result kpf_reader_describe(kpf_reader* reader, kpf_recording_info* info);

/**
 * Finds frame n, which is the n-th place of the recording, from 0: frames that were lost and data
 * files that are missing keep their places.
 *
 * The pixels lie in the mapped data file: nothing is copied, and they must not be written. They are
 * valid until kpf_reader_refresh or kpf_reader_close of this reader, on any thread. Should another
 * program shorten the file meanwhile, touching them ends the process.
 *
 * @param frame filled in.
 * @return KPF_OK, also for a lost frame; KPF_ERROR_RANGE; KPF_ERROR_OPEN when the data file has
 *         become unreadable or shorter.
 */
KPF_API kpf_result kpf_reader_frame(kpf_reader* reader, uint32_t n, kpf_frame* frame);

/**
 * Unpacks frame n: 16 bits a sample, row by row from the top, without a gap.
 *
 * @param samples receives width x height samples. Of an odd width the last column of 12-bit frames
 *        was never stored and is 0.
 * @param count samples that there is room for.
 * @param form KPF_SAMPLES_VALUE or KPF_SAMPLES_LEFT.
 * @return as kpf_reader_frame; KPF_ERROR_LOST, and the samples are untouched, for a lost frame;
 *         KPF_ERROR_ARGUMENT when there is too little room.
 */
KPF_API kpf_result kpf_reader_unpack(kpf_reader* reader, uint32_t n, uint16_t* samples,
                                     size_t count, uint32_t form);

/** @param path receives the path of data file file_number (from 1), whether it exists or not. It is
 * valid until the next call of this function, or kpf_reader_close, with this reader.
 * @return KPF_OK, KPF_ERROR_HANDLE, KPF_ERROR_ARGUMENT. */
KPF_API kpf_result kpf_reader_data_file(kpf_reader* reader, uint32_t file_number,
                                        const char** path);

/**
 * Looks at the files again, for what was recorded since. Ends all pixels given before.
 *
 * @return as kpf_reader_open; KPF_ERROR_FORMAT also when another recording is there by now. After
 *         an error the reader, and its pixels, are as they were.
 */
KPF_API kpf_result kpf_reader_refresh(kpf_reader* reader);

/** Ends the reader and all pixels that it gave. @return KPF_OK, KPF_ERROR_HANDLE. */
KPF_API kpf_result kpf_reader_close(kpf_reader* reader);

/**
 * Unpacks one frame that is already in memory as kpf_reader_unpack does; needs no reader.
 *
 * @param bits 8 or 12; @param packed the stored bytes, packed_size of them.
 * @return KPF_OK; KPF_ERROR_ARGUMENT for a null, a size that is not the frame's, or too little
 * room.
 */
KPF_API kpf_result kpf_unpack(uint32_t width, uint32_t height, uint32_t bits, const void* packed,
                              size_t packed_size, uint16_t* samples, size_t count, uint32_t form);

/* ---- Amplifying ------------------------------------------------------------------------------ */

/** A window of recent 8-bit frames, against which the newest is amplified. */
typedef struct kpf_amplifier kpf_amplifier;

/**
 * Makes an amplifier. Its window W spans three cycles of the motion: 3 x (frame_rate /
 * motion_frequency, cut) frames, of which it holds W - 1.
 *
 * @param amplifier receives the handle, to be destroyed by kpf_amplifier_destroy.
 * @return KPF_OK, KPF_ERROR_ARGUMENT, KPF_ERROR_STRUCT, KPF_ERROR_MEMORY.
 */
KPF_API kpf_result kpf_amplifier_create(const kpf_amplifier_options* options,
                                        kpf_amplifier** amplifier);

/** @param frames receives W - 1: how many frames must have been added before one can be had. */
KPF_API kpf_result kpf_amplifier_window(kpf_amplifier* amplifier, uint32_t* frames);

/**
 * Adds a frame, copied; the oldest leaves a full window.
 *
 * @param pixels a byte a pixel, rows from the top.
 * @param row_stride bytes from one row to the next, at least the width; 0: rows without a gap.
 */
KPF_API kpf_result kpf_amplifier_add(kpf_amplifier* amplifier, const void* pixels,
                                     size_t row_stride);

/** @param available receives 1 when a frame can be had, else 0. */
KPF_API kpf_result kpf_amplifier_available(kpf_amplifier* amplifier, uint32_t* available);

/**
 * Gives the newest frame, each pixel brightened by its positive difference from the reference times
 * the gain (modulo 256), at most to 255.
 *
 * @param pixels receives width x height bytes without gaps. @param size bytes of room.
 * @return KPF_OK; KPF_ERROR_NOT_READY; KPF_ERROR_ARGUMENT when there is too little room.
 */
KPF_API kpf_result kpf_amplifier_get(kpf_amplifier* amplifier, void* pixels, size_t size);

/** Gives the reference: the sum of the W - 1 frames held divided by W, cut. Otherwise as
 * kpf_amplifier_get. */
KPF_API kpf_result kpf_amplifier_reference(kpf_amplifier* amplifier, void* pixels, size_t size);

/** Changes the gain, from the next frame had; the window stays. It must be finite. */
KPF_API kpf_result kpf_amplifier_set_gain(kpf_amplifier* amplifier, double gain);

/** Ends the amplifier. @return KPF_OK, KPF_ERROR_HANDLE. */
KPF_API kpf_result kpf_amplifier_destroy(kpf_amplifier* amplifier);

#ifdef __cplusplus
}
#endif

#endif
