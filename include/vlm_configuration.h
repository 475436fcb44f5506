/* The two records by which a caller describes a recording and a motion amplifier. */
#ifndef VLM_CONFIGURATION_H
#define VLM_CONFIGURATION_H

/* What vxCreateMotionAmplifier reads. Nothing in it is checked or changed. */
typedef struct VXP_MA_CONFIGURATION {
  double frameRate;       /* frames per second of the incoming frames */
  double motionFrequency; /* cycles per second of the motion to amplify */
  int width;              /* pixels */
  int height;             /* pixels */
  double ampFactor;       /* gain on each pixel's positive difference from the reference */
} VXP_MA_CONFIGURATION;

#ifdef __cplusplus

#include <string>

namespace VLM_INTERNAL {

using ::VXP_MA_CONFIGURATION;

/**
 * What vxCreatePackStreamer copies into the new stream.
 *
 * Member order, widths and the string type are part of the binary interface. Members called
 * "carried" are kept for the caller's convenience and never read by the library.
 */
struct VXP_STREAM_CONFIGURATION {
  std::string text1;                    // carried
  std::string text2;                    // header file, 60 bytes at offset 324; longer texts run on
  std::string text3;                    // carried
  std::string text4;                    // carried
  std::string text5;                    // header file, 151 bytes at offset 5; longer texts are cut
  int value1 = 0;                       // carried
  int value2 = 0;                       // carried
  unsigned int width = 0;               // pixels
  unsigned int height = 0;              // pixels
  int frameRate = 0;                    // frames per second; 0 leaves stamped times meaningless
  int value3 = 0;                       // header file, as a double at offset 200
  int bitsPerPixel = 0;                 // 8: a byte a pixel; else 12 bits, 3 bytes per 2 pixels
  unsigned int frameCount = 0;          // frames that the stream is to hold; 0 is refused
  int value4 = 0;                       // carried
  int value5 = 0;                       // header file, at offset 1806, when it is 1 or 2
  int value6 = 0;                       // carried
  std::string text6;                    // carried
  std::string text7;                    // carried
  int value7 = 0;                       // header file, as a double at offset 156
  int value8 = 0;                       // carried
  unsigned long long startSeconds = 0;  // time of frame 0, whole seconds of the caller's epoch
  unsigned int startMicroseconds = 0;   // added to it; 0 to 999999 expected, not checked
};

}  // namespace VLM_INTERNAL

#endif
#endif
