#include <hdf5.h>

#include <string>

#include "bench/stream/peers.h"

namespace BENCH {
namespace {

hid_t createDataset(hid_t file, const Video& video) {
  const hsize_t all[] = {video.frames.size(), video.size.height, video.size.width};
  const hsize_t chunk[] = {1, video.size.height, video.size.width};
  const hid_t space = H5Screate_simple(3, all, nullptr);
  const hid_t layout = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(layout, 3, chunk);
  H5Pset_fill_time(layout, H5D_FILL_TIME_NEVER);
  const hid_t dataset =
      H5Dcreate2(file, "frames", H5T_STD_U16LE, space, H5P_DEFAULT, layout, H5P_DEFAULT);
  H5Pclose(layout);
  H5Sclose(space);
  return dataset;
}

}  // namespace

void recordHdf5(const std::string& name, const Video& video) {
  const hid_t file = H5Fcreate(name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
  require(file >= 0, "H5Fcreate");
  const hid_t dataset = createDataset(file, video);
  require(dataset >= 0, "H5Dcreate2");
  for (hsize_t i = 0; i < video.frames.size(); ++i) {
    const Frame& frame = video.frames[i];
    const hsize_t offset[] = {i, 0, 0};
    // A whole chunk at once passes by the chunk cache, the fastest way there is.
    require(H5Dwrite_chunk(dataset, H5P_DEFAULT, 0, offset, frame.size() * sizeof(frame[0]),
                           frame.data()) >= 0,
            "H5Dwrite_chunk");
  }
  H5Dclose(dataset);
  H5Fclose(file);
}

}  // namespace BENCH
