#include "platform/audio/WaveFileAudioEngine.h"

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <vector>

namespace orlune {
namespace {

using namespace std::chrono_literals;
using Pace = WaveFileAudioEngine::Pace;
using testing::HasSubstr;

constexpr auto deadline = 10s;

class WaveFileAudioEngineTest : public testing::Test {
  protected:
    /// A file in which frame n of channel c holds (n + c) / 32768.
    std::filesystem::path ramp(int frames, int channels, int sampleRate, int format) {
        SF_INFO info{};
        info.channels = channels;
        info.samplerate = sampleRate;
        info.format = format;
        const auto path = folder.path() / "ramp";
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        std::vector<float> samples;
        for (int frame = 0; frame < frames; ++frame) {
            for (int channel = 0; channel < channels; ++channel) {
                samples.push_back(static_cast<float>(frame + channel) / 32768);
            }
        }
        sf_writef_float(file, samples.data(), frames);
        sf_close(file);
        return path;
    }

    /// Opens the file and installs a tap that stores its buffers; sets `ended` after the end.
    void open(const std::filesystem::path& path, Pace pace, std::uint32_t bufferSize) {
        auto opened = WaveFileAudioEngine::create(path, pace, [this] { ended->set_value(); });
        ASSERT_TRUE(opened.engine) << opened.error;
        engine = std::move(opened.engine);
        engine->installTap(bufferSize, engine->inputFormat(), [this](auto buffers) {
            const auto& buffer = buffers.front(); // a file is delivered one buffer at a time
            heard.resize(buffer.format().channelCount);
            for (std::uint32_t channel = 0; channel < heard.size(); ++channel) {
                const auto samples = buffer.floatChannel(channel);
                heard[channel].insert(heard[channel].end(), samples.begin(), samples.end());
            }
            ++bufferCount;
        });
        engine->prepare();
    }

    /// Plays to the end.
    void play() {
        heard.clear();
        ended.emplace();
        auto end = ended->get_future();
        engine->start();
        ASSERT_EQ(end.wait_for(deadline), std::future_status::ready);
        EXPECT_TRUE(engine->isRunning()) << "like a microphone that hears nothing";
        engine->stop();
    }

    test::TemporaryFolder folder;
    std::vector<std::vector<float>> heard;
    std::atomic<int> bufferCount = 0;
    std::optional<std::promise<void>> ended;
    std::unique_ptr<WaveFileAudioEngine> engine; // last: its thread uses the others
};

TEST_F(WaveFileAudioEngineTest, PlaysEachKindOfFileInWholeBuffersAndFillsUpTheLast) {
    struct Row {
        int frames;
        int channels;
        int sampleRate;
        int format;
        std::size_t heardFrames;
    };
    const Row rows[] = {
        {1000, 1, 16000, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1024},
        {1024, 2, 48000, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1024},
        {1, 3, 44100, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 256},
        {300, 8, 96000, SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 512},
        {0, 1, 16000, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.format);
        open(ramp(row.frames, row.channels, row.sampleRate, row.format), Pace::fast, 256);
        EXPECT_EQ(engine->inputFormat(),
                  (AudioFormat{AudioFormat::Sample::float32, double(row.sampleRate),
                               std::uint32_t(row.channels), false}));
        for (int time = 0; time < 2; ++time) {
            play();
            std::vector<std::vector<float>> expected;
            for (int channel = 0; channel < row.channels && row.heardFrames > 0; ++channel) {
                auto& samples = expected.emplace_back(row.heardFrames, 0.0F);
                for (int frame = 0; frame < row.frames; ++frame) {
                    samples[std::size_t(frame)] = float(frame + channel) / 32768;
                }
            }
            EXPECT_EQ(heard, expected) << "each start plays from the beginning";
        }
    }
}

TEST_F(WaveFileAudioEngineTest, KeepsThePaceOfAMicrophone) {
    open(ramp(4800, 1, 48000, SF_FORMAT_WAV | SF_FORMAT_PCM_16), Pace::microphone, 480);
    const auto begin = std::chrono::steady_clock::now();
    play();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 100ms);
    EXPECT_EQ(bufferCount, 10);
}

TEST_F(WaveFileAudioEngineTest, StopsAtOnceInTheMiddleOfABuffer) {
    // One buffer takes ten seconds.
    open(ramp(80000, 1, 8000, SF_FORMAT_WAV | SF_FORMAT_PCM_16), Pace::microphone, 80000);
    const auto begin = std::chrono::steady_clock::now();
    engine->start();
    EXPECT_TRUE(engine->isRunning());
    engine->stop();
    EXPECT_FALSE(engine->isRunning());
    engine->start();
    engine->removeTap();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
    EXPECT_EQ(bufferCount, 0);
}

TEST_F(WaveFileAudioEngineTest, AFileThatIsNotAudioGivesAReasonInsteadOfAnEngine) {
    const auto text = folder.path() / "notes.txt";
    test::write(text, "this is not a recording");
    struct Row {
        std::filesystem::path path;
        const char* reason;
    };
    const Row rows[] = {
        {text, "notes.txt: Format not recognised"},
        {folder.path() / "missing.wav", "missing.wav: System error : No such file or directory"},
        {folder.path(), ": "},
    };
    for (const auto& row : rows) {
        const auto opened = WaveFileAudioEngine::create(row.path, Pace::fast);
        EXPECT_EQ(opened.engine, nullptr);
        EXPECT_THAT(opened.error, HasSubstr("Cannot play " + folder.path().string()));
        EXPECT_THAT(opened.error, HasSubstr(row.reason));
    }
}

} // namespace
} // namespace orlune
