#include <tiffio.h>

#include <cstdint>
#include <string>

#include "bench/stream/peers.h"

namespace BENCH {
namespace {

void setFields(TIFF* tiff, FrameSize size) {
  TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, size.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, size.height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, size.height);
}

}  // namespace

void recordTiff(const std::string& file, const Video& video) {
  TIFF* const tiff = TIFFOpen(file.c_str(), "w");
  require(tiff != nullptr, "TIFFOpen");
  for (const Frame& frame : video.frames) {
    setFields(tiff, video.size);
    const auto bytes = static_cast<tmsize_t>(frame.size() * sizeof(frame[0]));
    auto* const samples = const_cast<std::uint16_t*>(frame.data());  // taken as void*, only read
    require(TIFFWriteRawStrip(tiff, 0, samples, bytes) == bytes, "TIFFWriteRawStrip");
    require(TIFFWriteDirectory(tiff) == 1, "TIFFWriteDirectory");
  }
  TIFFClose(tiff);
}

}  // namespace BENCH
