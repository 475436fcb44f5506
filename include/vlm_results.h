/* Names for the plain integers that the functions of vlm_internal.h return. */
#ifndef VLM_RESULTS_H
#define VLM_RESULTS_H

/* Results of the exported functions and states of a stream share one numbering. */
enum VlmResult {
  VLM_SUCCESS = 0,

  /* States of a stream; the stream functions pass them through. */
  STREAM_CONSTRUCTED = 2,    /* built, not yet prepared */
  STREAM_WRITING = 3,        /* prepared; frames may be added */
  STREAM_COMPLETE = 4,       /* every configured frame has been written */
  STREAM_CLOSED = 5,         /* files closed; what closing always returns */
  STREAM_INCOMPLETE = 6,     /* frames were missing at close (held only during the close) */
  STREAM_NO_FRAMES = 12,     /* the configured frame count is zero */
  STREAM_WRITE_FAILED = 13,  /* the header bytes could not be written */
  STREAM_OPEN_FAILED = 15,   /* the header file cannot be opened */
  STREAM_REFUSED = 16,       /* not possible in this state, or not offered (frame replacement) */
  STREAM_NO_CONFIG = 18,     /* no configuration */
  STREAM_HEADER_FAILED = 21, /* the header file could not be completed */
  STREAM_BAD_PATH = 22,      /* no usable extension in the name, or no folder for the data files */
  STREAM_RECORD_TOO_LARGE = 24, /* one frame record would not fit a data file */

  /* Results of single calls. */
  VLM_BAD_HANDLE = 10,     /* the handle is 0 or names no object */
  VLM_NULL_FRAME = 11,     /* vxMAAddFrame: the frame pointer is null */
  VLM_NULL_IMAGE = 14,     /* vxConvertTiffImageData: an image pointer is null */
  VLM_PACKING_FAILED = 23, /* the image could not be packed */
  VLM_MA_CLOSED = 25,      /* vxCloseMotionAmplifier: closed, as asked */
  VLM_MA_NO_FRAME = 26     /* the amplifier has no frame or reference to deliver yet */
};

#endif
