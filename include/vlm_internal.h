/**
 * vlm_internal: recording of mono video, and amplification of small movements in it.
 *
 * What holds for every function:
 * - Objects live in the library; callers hold handles. Handle 0 is never issued. Streams and
 *   amplifiers are numbered independently, from 1; the number of a closed object is issued again,
 *   lowest first.
 * - A handle of 0, or one that names no object, is logged and answered with VLM_BAD_HANDLE (10).
 *   The one handle just behind the highest ever issued is the exception: std::out_of_range leaves
 *   the function. Other exceptions are the standard library's (memory). No errno, no last error.
 * - Faults are logged through VX_LOG::VxLogger, one line each, beginning with the function's name.
 * - Threads: all streams share one table, all amplifiers another. Calls that touch one table are
 *   the caller's to serialise, also those on different objects, except those that the amplifiers'
 *   locks cover: while none is created or closed, all the other vxMA functions may overlap, on one
 *   amplifier and on several. vxGetPackedSize and vxConvertTiffImageData touch no table: any
 *   thread may call them, to the very end of the process.
 * - Objects still open when the process ends are closed, the amplifiers first, behind the
 *   destructors of static objects of a program that is linked with the library. That touches both
 *   tables: threads that use them must have ended by then. A handle used even later is bad like
 *   that of any other closed object.
 * - A failed call leaves its output arguments untouched and its object as it was.
 * - Buffers stay the caller's and are not kept, except where vxMAAddFrame takes one over.
 *
 * Results are plain integers; enum VlmResult in vlm_results.h names them.
 */
#ifndef VLM_INTERNAL_H
#define VLM_INTERNAL_H

#include "vlm_configuration.h"
#include "vlm_export.h"
#include "vlm_results.h"
#include "vlm_version.h"

#ifdef __cplusplus
#include <string>

#include "vx_log.h"
extern "C" {
#else
#include <stdbool.h>
#endif

/* ---- Recording ------------------------------------------------------------------------------ */

#ifdef __cplusplus
/**
 * Begins a recording: writes the header file and makes the folder for the data files.
 *
 * @param streamName path of the header file, with an extension; the folder has the same name
 *        without it. An existing recording of that name is overwritten.
 * @param configuration copied.
 * @return the stream's handle, or 0; the log then says why.
 */
VLM_API unsigned int vxCreatePackStreamer(
    const std::string& streamName, const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration);
#endif

/**
 * Ends a recording and retires its handle. When frames are missing, a status file
 * (streamName.incomplete.txt) says so.
 *
 * @return STREAM_CLOSED (5), or VLM_BAD_HANDLE.
 */
VLM_API int vxClosePackStreamer(unsigned int streamHandle);

/** @return STREAM_COMPLETE (4) once every configured frame is written, else the stream's status. */
VLM_API int vxIsPackStreamerFinished(unsigned int streamHandle);

/**
 * Writes an all-zero record in place of a frame that was lost.
 *
 * @return always STREAM_WRITING (3), also for the last frame and for one too many, or
 *         VLM_BAD_HANDLE.
 */
VLM_API int vxAddPlaceholder(unsigned int streamHandle);

/**
 * Counts of a stream, in frames; none of the pointers may be null.
 *
 * @param frameCount receives the configured count.
 * @param framesPacked receives the frames packed so far.
 * @param framesWritten receives the frames written so far: the same number.
 * @return VLM_SUCCESS (0), or VLM_BAD_HANDLE.
 */
VLM_API int vxGetPackStatistics(unsigned int streamHandle, unsigned int* frameCount,
                                unsigned int* framesPacked, unsigned int* framesWritten);

/**
 * Adds a frame that is already packed. When the call returns, the record is with the operating
 * system.
 *
 * Whether the frame was taken is told by vxGetPackStatistics: one too many, or one whose data file
 * cannot be opened, is logged and refused, and the result does not show it. A refused frame may
 * leave an empty data file. One whose writing failed is logged and counts as written.
 *
 * @param data a frame record as vxConvertTiffImageData makes it: 16 header bytes, kept as they are,
 *        then the packed pixels; vxGetPackedSize bytes for the stream's geometry. Null writes an
 *        all-zero record.
 * @return STREAM_COMPLETE (4) after the last frame, else STREAM_WRITING (3), or VLM_BAD_HANDLE.
 */
VLM_API int vxAddPackedData(unsigned int streamHandle, const unsigned char* data);

/**
 * Packs an image and adds it, stamped with its place in the stream and the time of that place.
 *
 * @param data height rows of width pixels, each row padded to a multiple of 4 bytes. 8-bit streams:
 *        a byte a pixel. Others: 2 bytes a pixel, little-endian, of which the upper 12 bits are
 *        kept; of an odd width the last pixel of every row is lost.
 * @return as vxAddPackedData; VLM_PACKING_FAILED (23) when the image is null or too large to pack.
 */
VLM_API int vxAddTiffImageData(unsigned int streamHandle, const unsigned char* data);

/**
 * Replacing a written frame is not offered: the image is packed and dropped, nothing changes.
 *
 * @return STREAM_REFUSED (16); VLM_PACKING_FAILED; VLM_BAD_HANDLE.
 */
VLM_API int vxReplaceFrame(unsigned int streamHandle, unsigned int frameNumber,
                           const unsigned char* data);

/**
 * @return bytes of one frame record: 16, and width x height at 8 bits, else half of three times
 *         that; in 32-bit arithmetic that wraps.
 */
VLM_API unsigned int vxGetPackedSize(unsigned int width, unsigned int height,
                                     unsigned int bitsPerPixel);

/**
 * Packs an image into the caller's buffer, stamped with the number given and the present time.
 *
 * @param imageInPtr an image as vxAddTiffImageData takes it.
 * @param imageOutPtr receives vxGetPackedSize(width, height, bitsPerPixel) bytes.
 * @return VLM_SUCCESS (0), VLM_NULL_IMAGE (14), VLM_PACKING_FAILED (23).
 */
VLM_API int vxConvertTiffImageData(const unsigned char* imageInPtr, unsigned char* imageOutPtr,
                                   unsigned int frameNumber, unsigned int width,
                                   unsigned int height, unsigned int bitsPerPixel);

/* ---- Motion amplification ------------------------------------------------------------------- */

/**
 * Makes an amplifier for 8-bit frames of width x height bytes.
 *
 * Its window spans three cycles of the motion: W = 3 x (frameRate / motionFrequency, truncated)
 * frames, or 1 when that is 0. Frames are delivered once W - 1 of them have been added.
 *
 * @param parameters read, not kept; must not be null.
 * @return the amplifier's handle. Throws std::length_error when width x height is negative.
 */
VLM_API unsigned int vxCreateMotionAmplifier(const VXP_MA_CONFIGURATION* parameters);

/** @return VLM_MA_CLOSED (25), or VLM_BAD_HANDLE. */
VLM_API int vxCloseMotionAmplifier(unsigned int maHandle);

/**
 * Adds a frame to the window; beyond W - 1 frames the oldest leaves it.
 *
 * @param framePtr width x height bytes from ::operator new. The amplifier takes the buffer over,
 *        without a copy, and frees it with ::operator delete; after an error it is still the
 *        caller's. One buffer must not be added twice.
 * @return VLM_SUCCESS (0), VLM_BAD_HANDLE, VLM_NULL_FRAME (11).
 */
VLM_API int vxMAAddFrame(unsigned int maHandle, unsigned char* framePtr);

/** Whether a frame can be delivered; false for a bad handle. */
VLM_API bool vxMAAvailable(unsigned int maHandle);

/**
 * Delivers the newest frame, each pixel brightened by its positive difference from the reference
 * times the factor (reduced modulo 256), at most to 255.
 *
 * @param frameOut receives width x height bytes.
 * @return VLM_SUCCESS (0), VLM_MA_NO_FRAME (26), VLM_BAD_HANDLE.
 */
VLM_API int vxMAGetFrame(unsigned int maHandle, unsigned char* frameOut);

/**
 * Delivers the reference: the sum of the W - 1 frames held, divided by W, truncated.
 *
 * @param refOut receives width x height bytes.
 * @return VLM_SUCCESS (0), VLM_MA_NO_FRAME (26), VLM_BAD_HANDLE.
 */
VLM_API int vxMAGetRefFrame(unsigned int maHandle, unsigned char* refOut);

/**
 * @return W, which can be 0 or negative; 0 for handle 0 or one out of range, 10 for a closed one.
 */
VLM_API int vxMAGetRefWindowSize(unsigned int maHandle);

/** Sets the factor, to whole numbers only; the window stays. A bad handle is logged. */
VLM_API void vxMAUpdateAmpFactor(unsigned int maHandle, int ampFactor);

#ifdef __cplusplus
}
#endif

#endif
