// make_scene OUT.y4m: a still scene of which one part moves by a tenth of a pixel.
//
// 4 seconds at 100 frames/s, 320 x 240 pixels, grey. In the middle a striped disc swings from left
// to right, 5 times a second and 0.1 pixel far; around it the same stripes stand still. Every
// sample carries the noise of a sensor. Each run makes the same bytes.
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kRate = 100;      // frames per second
constexpr int kFrames = 400;    //
constexpr double kMotion = 5;   // hertz
constexpr double kSwing = 0.1;  // pixels, to either side
constexpr double kRadius = 60;  // pixels, of the disc that moves
constexpr double kPeriod = 8;   // pixels, of the stripes
constexpr double kNoise = 0.8;  // grey levels, standard deviation

bool moves(int x, int y) { return std::hypot(x - kWidth / 2, y - kHeight / 2) < kRadius; }

/// Brightness of the scene at one point, before the noise.
double brightness(double x) { return 70 + 40 * std::sin(2 * std::numbers::pi * x / kPeriod); }

std::vector<unsigned char> frame(int number, std::mt19937& random) {
  std::normal_distribution<double> noise(0, kNoise);
  const double shift = kSwing * std::sin(2 * std::numbers::pi * kMotion * number / kRate);
  std::vector<unsigned char> samples;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const double value = brightness(moves(x, y) ? x - shift : x) + noise(random);
      samples.push_back(static_cast<unsigned char>(std::lround(value)));
    }
  }
  return samples;
}

}  // namespace

int main(int argc, char** argv) {
  std::FILE* const file = argc == 2 ? std::fopen(argv[1], "wb") : nullptr;
  if (file == nullptr) {
    std::fprintf(stderr, "make_scene: give one name of a file that can be written\n");
    return 2;
  }
  std::mt19937 random(1);
  std::fprintf(file, "YUV4MPEG2 W%d H%d F%d:1 Ip A1:1 Cmono\n", kWidth, kHeight, kRate);
  for (int number = 0; number < kFrames; ++number) {
    const auto samples = frame(number, random);
    std::fputs("FRAME\n", file);
    std::fwrite(samples.data(), 1, samples.size(), file);
  }
  return std::fclose(file) == 0 ? 0 : 1;
}
