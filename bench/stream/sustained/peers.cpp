// TIFF and HDF5, as a user of their libraries would write them: 16 bits a pixel, on one thread.
#include <hdf5.h>
#include <memory>
#include <string>

#include <tiffio.h>

#include "bench/stream/sustained/writers.h"

namespace BENCH {
namespace {

/// A page a frame, one strip each, in a file that may pass 4 GiB.
class Tiff : public FrameWriter {
 public:
  Tiff(const std::string& folder, const Material& material)
      : material_(material), file_(TIFFOpen((folder + "/peer.tif").c_str(), "w8")) {
    require(file_ != nullptr, "TIFFOpen");
  }
  ~Tiff() override { TIFFClose(file_); }

  void write(unsigned n) override {
    TIFFSetField(file_, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    TIFFSetField(file_, TIFFTAG_IMAGEWIDTH, material_.size.width);
    TIFFSetField(file_, TIFFTAG_IMAGELENGTH, material_.size.height);
    TIFFSetField(file_, TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(file_, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(file_, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(file_, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(file_, TIFFTAG_ROWSPERSTRIP, material_.size.height);
    const auto& image = material_.images[n % material_.images.size()];
    const auto size = static_cast<tmsize_t>(image.size());
    auto* const samples = const_cast<unsigned char*>(image.data());  // taken as void*, only read
    require(TIFFWriteRawStrip(file_, 0, samples, size) == size, "TIFFWriteRawStrip");
    require(TIFFWriteDirectory(file_) == 1, "TIFFWriteDirectory");
  }

 private:
  const Material& material_;
  TIFF* file_;
};

/// A chunk a frame; whole chunks pass by the chunk cache, the fastest way there is.
class Hdf5 : public FrameWriter {
 public:
  Hdf5(const std::string& folder, const Material& material, unsigned frames)
      : material_(material),
        file_(H5Fcreate((folder + "/peer.h5").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT)) {
    require(file_ >= 0, "H5Fcreate");
    const hsize_t all[] = {frames, material.size.height, material.size.width};
    const hsize_t chunk[] = {1, material.size.height, material.size.width};
    const hid_t space = H5Screate_simple(3, all, nullptr);
    const hid_t layout = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(layout, 3, chunk);
    H5Pset_fill_time(layout, H5D_FILL_TIME_NEVER);
    dataset_ = H5Dcreate2(file_, "frames", H5T_STD_U16LE, space, H5P_DEFAULT, layout, H5P_DEFAULT);
    H5Pclose(layout);
    H5Sclose(space);
    require(dataset_ >= 0, "H5Dcreate2");
  }
  ~Hdf5() override {
    H5Dclose(dataset_);
    H5Fclose(file_);
  }

  void write(unsigned n) override {
    const hsize_t offset[] = {n, 0, 0};
    const auto& image = material_.images[n % material_.images.size()];
    require(H5Dwrite_chunk(dataset_, H5P_DEFAULT, 0, offset, image.size(), image.data()) >= 0,
            "H5Dwrite_chunk");
  }

 private:
  const Material& material_;
  hid_t file_;
  hid_t dataset_ = -1;
};

}  // namespace

std::unique_ptr<FrameWriter> openTiff(const std::string& folder, const Material& material,
                                      unsigned /*frames*/) {
  return std::make_unique<Tiff>(folder, material);
}

std::unique_ptr<FrameWriter> openHdf5(const std::string& folder, const Material& material,
                                      unsigned frames) {
  return std::make_unique<Hdf5>(folder, material, frames);
}

}  // namespace BENCH
