#include "tools/kpf/media/grey_picture.h"

#include <algorithm>
#include <cstring>

#include "tools/kpf/media/grey_row.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint32_t kWeights[] = {19595, 38470, 7471};  // of red, green, blue in 65536

/// Bits of a grey sample in native byte order, or 0 for any other format.
int greyBits(int format) {
  switch (format) {
    case AV_PIX_FMT_GRAY8:
      return 8;
    case AV_PIX_FMT_GRAY10LE:
      return 10;
    case AV_PIX_FMT_GRAY12LE:
      return 12;
    case AV_PIX_FMT_GRAY14LE:
      return 14;
    case AV_PIX_FMT_GRAY16LE:
      return 16;
    default:
      return 0;
  }
}

const AVPixFmtDescriptor* descriptorOf(const AVFrame& picture) {
  return av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
}

/// Whether FFmpeg can take its components apart: whole samples of up to 16 bits.
bool hasPlainComponents(const AVPixFmtDescriptor& format) {
  constexpr std::uint64_t kOthers = AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BITSTREAM |
                                    AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
  return (format.flags & kOthers) == 0 && format.nb_components > 0 && format.comp[0].depth <= 16 &&
         std::strncmp(format.name, "xyz", 3) != 0;
}

/// Some formats have the range in their name, the others tell it beside.
bool hasFullRange(const AVFrame& picture, const AVPixFmtDescriptor& format) {
  constexpr int kGreyComponents = 2;  // with the alpha
  return picture.color_range == AVCOL_RANGE_JPEG || format.nb_components <= kGreyComponents ||
         std::strncmp(format.name, "yuvj", 4) == 0;
}

std::vector<std::uint16_t> stretch(int depth, bool full) {
  const int most = (1 << depth) - 1;
  const int black = full ? 0 : 16 << (depth - 8);
  const int range = full ? most : 219 << (depth - 8);
  std::vector<std::uint16_t> table(std::size_t{1} << depth);
  for (int luma = 0; luma <= most; ++luma) {
    const long long grey = (2LL * std::max(luma - black, 0) * most + range) / (2LL * range);
    table[static_cast<std::size_t>(luma)] =
        static_cast<std::uint16_t>(std::min<long long>(grey, most) << (16 - depth));
  }
  return table;
}

}  // namespace

bool GreyPicture::copy(const AVFrame& picture, unsigned char* out, std::size_t stride,
                       Samples samples) {
  const int bits = greyBits(picture.format);
  const std::size_t width = static_cast<std::size_t>(picture.width);
  const bool byRow = bits == 0 && openRow(picture);
  const AVFrame* const rows = bits != 0 || byRow ? &picture : scaled(picture);
  if (rows == nullptr) return false;
  const AVPixFmtDescriptor& format = *descriptorOf(picture);
  for (int y = 0; y < picture.height; ++y, out += stride) {
    if (!byRow) {
      copyGreyRow(rows->data[0] + std::ptrdiff_t{y} * rows->linesize[0], bits != 0 ? bits : 16, out,
                  samples, width);
      continue;
    }
    if (format.flags & AV_PIX_FMT_FLAG_PAL) {
      readPalette(picture, y);
    } else if (format.flags & AV_PIX_FMT_FLAG_RGB) {
      readColour(picture, y);
    } else {
      readLuma(picture, y);
    }
    copyGreyRow(reinterpret_cast<const unsigned char*>(row_.data()), 16, out, samples, width);
  }
  return true;
}

/// Makes ready for rows of this format; false where its components cannot be had one by one.
bool GreyPicture::openRow(const AVFrame& picture) {
  const AVPixFmtDescriptor* const format = descriptorOf(picture);
  if (format == nullptr || !hasPlainComponents(*format)) return false;
  row_.resize(static_cast<std::size_t>(picture.width));
  values_.resize(row_.size());
  if (format->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) return true;
  const int depth = format->comp[0].depth;
  if (depth < 8) return false;
  const bool full = hasFullRange(picture, *format);
  if (depth != depth_ || full != full_) stretched_ = stretch(depth, full);
  depth_ = depth;
  full_ = full;
  return true;
}

void GreyPicture::readComponent(const AVFrame& picture, int component, int y) {
  const std::uint8_t* data[4] = {picture.data[0], picture.data[1], picture.data[2],
                                 picture.data[3]};
  av_read_image_line2(values_.data(), data, picture.linesize, descriptorOf(picture), 0, y,
                      component, picture.width, 0, sizeof values_[0]);
}

void GreyPicture::readLuma(const AVFrame& picture, int y) {
  readComponent(picture, 0, y);
  std::transform(values_.begin(), values_.end(), row_.begin(),
                 [this](std::uint16_t luma) { return stretched_[luma]; });
}

void GreyPicture::readColour(const AVFrame& picture, int y) {
  const AVPixFmtDescriptor& format = *descriptorOf(picture);
  const int depth = std::max(8, format.comp[1].depth);  // green is the deepest
  const std::uint32_t most = (1U << depth) - 1;
  weighed_.assign(row_.size(), 1U << 15);
  for (int colour = 0; colour < 3; ++colour) {
    readComponent(picture, colour, y);
    const std::uint32_t own = (1U << format.comp[colour].depth) - 1;
    for (std::size_t x = 0; x < row_.size(); ++x) {
      weighed_[x] += kWeights[colour] * (own == most ? values_[x] : values_[x] * most / own);
    }
  }
  for (std::size_t x = 0; x < row_.size(); ++x) {
    row_[x] = static_cast<std::uint16_t>(weighed_[x] >> 16 << (16 - depth));
  }
}

void GreyPicture::readPalette(const AVFrame& picture, int y) {
  readComponent(picture, 0, y);
  for (std::size_t x = 0; x < row_.size(); ++x) {
    std::uint32_t colour = 0;  // alpha, red, green, blue from the top
    std::memcpy(&colour, picture.data[1] + std::size_t{4} * values_[x], sizeof colour);
    const std::uint32_t weighed = kWeights[0] * (colour >> 16 & 0xFF) +
                                  kWeights[1] * (colour >> 8 & 0xFF) +
                                  kWeights[2] * (colour & 0xFF) + (1U << 15);
    row_[x] = static_cast<std::uint16_t>(weighed >> 16 << 8);
  }
}

/// Single bits, Bayer patterns and the like: by FFmpeg's own scaler, remade where the format
/// changes. 16 bits hold what any of them has.
const AVFrame* GreyPicture::scaled(const AVFrame& picture) {
  scaler_.reset(sws_getCachedContext(scaler_.release(), picture.width, picture.height,
                                     static_cast<AVPixelFormat>(picture.format), picture.width,
                                     picture.height, AV_PIX_FMT_GRAY16LE,
                                     SWS_BICUBIC | SWS_ACCURATE_RND, nullptr, nullptr, nullptr));
  scaledPicture_.reset(av_frame_alloc());
  scaledPicture_->format = AV_PIX_FMT_GRAY16LE;
  scaledPicture_->width = picture.width;
  scaledPicture_->height = picture.height;
  if (!scaler_ || av_frame_get_buffer(scaledPicture_.get(), 0) < 0) return nullptr;
  constexpr int kOne = 1 << 16;
  const int* const weights = sws_getCoefficients(SWS_CS_DEFAULT);
  sws_setColorspaceDetails(scaler_.get(), weights, 1, weights, 1, 0, kOne, kOne);
  sws_scale(scaler_.get(), picture.data, picture.linesize, 0, picture.height, scaledPicture_->data,
            scaledPicture_->linesize);
  return scaledPicture_.get();
}

}  // namespace KPF_TOOL
