"""kpf amplify --clean: only what moves changes."""
import unittest

from videos import VideoTest, y4m

WINDOW = 6  # 25 frames/s at 12 Hz: two frames a cycle, three cycles


def cleaned(frames, gain):
    """The rule, sample by sample: the mean of the frames held, to the whole level that the
    library's reference leaves possible and that is nearest to the sample."""
    out = []
    for n, frame in enumerate(frames):
        if n + 2 < WINDOW:
            out.append(bytes(frame))
            continue
        held = frames[n - (WINDOW - 2):n + 1]
        samples = []
        for c, *column in zip(frame, *held):
            reference = sum(column) // WINDOW
            low = -(-reference * WINDOW // (WINDOW - 1))
            high = reference * WINDOW // (WINDOW - 1) + 1
            difference = c - min(max(c, low), high)
            product = abs(difference) * gain
            added = int(product + 0.5) * (1 if difference > 0 else -1)
            samples.append(min(255, max(0, c + added)))
        out.append(bytes(samples))
    return out


class Clean(VideoTest):
    def raw(self, *arguments):
        done = self.kpf_bytes("amplify", *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return done.stdout

    def test_a_still_scene_stays_exactly_as_it_is(self):
        levels = list(range(256))
        self.write("still.y4m", y4m(12 * [levels], 16, 16))
        out = self.raw("still.y4m", "-", "--frequency", "12", "--gain", "100", "--clean")
        self.assertEqual(out, 12 * bytes(levels))

    def test_every_frame_by_the_rule(self):
        frames = [[(n * 37 + i * 11) % 256 for i in range(24)] for n in range(12)]
        self.write("video.y4m", y4m(frames, 6, 4))
        self.assertEqual(
            self.raw("video.y4m", "-", "--frequency", "12", "--gain", "2.5", "--clean"),
            b"".join(cleaned(frames, 2.5)))

    def test_brighter_and_darker_and_saturated(self):
        frames = 8 * [[59, 59, 59, 59]] + [[64, 54, 99, 19]]
        self.write("video.y4m", y4m(frames, 2, 2))
        last = self.raw("video.y4m", "-", "--frequency", "12", "--gain", "10", "--clean")[-4:]
        # The mean moves with the newest frame, by a fifth of its step.
        self.assertEqual(list(last), [94, 14, 255, 0])

    def test_comparison_names_the_way_and_shows_the_raised_reference(self):
        frames = 9 * [[100] * (400 * 2)]
        self.write("video.y4m", y4m(frames, 400, 2))
        arguments = ("video.y4m", "-", "--frequency", "12", "--compare")
        size = (3 * 400 + 16) * (2 + 28)
        plain, clean = (self.raw(*arguments, *more)[-size:] for more in ((), ("--clean",)))
        self.assertNotEqual(plain[:28 * 1216], clean[:28 * 1216])  # another caption
        below = clean[-1216:]
        self.assertEqual(set(below[:400] + below[408:808] + below[816:]), {100})
        self.assertNotEqual(set(plain[-1216:][408:808]), {100})


if __name__ == "__main__":
    unittest.main()
