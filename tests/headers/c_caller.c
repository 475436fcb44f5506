/* What the library offers to a caller in C: conversion, and the amplifier. */
#include <string.h>

#include "vlm_internal.h"

int main(void) {
  const unsigned char image[8] = {1, 2, 3, 0xFF, 4, 5, 6, 0xFF};
  const unsigned char packed[6] = {1, 2, 3, 4, 5, 6};
  unsigned char record[16 + 6];
  if (vxGetPackedSize(3, 2, 8) != sizeof record) return 1;
  if (vxConvertTiffImageData(image, record, 9, 3, 2, 8) != VLM_SUCCESS) return 2;
  if (record[0] != 9 || memcmp(record + 16, packed, sizeof packed) != 0) return 3;

  const VXP_MA_CONFIGURATION parameters = {25.0, 20.0, 2, 1, 3.0};
  const unsigned int amplifier = vxCreateMotionAmplifier(&parameters);
  if (vxMAGetRefWindowSize(amplifier) != 3) return 4;
  if (vxMAAvailable(amplifier)) return 5;
  if (vxCloseMotionAmplifier(amplifier) != VLM_MA_CLOSED) return 6;
  return 0;
}
