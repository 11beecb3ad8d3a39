// Media timecodes against the published drop-frame rules and, where it is installed,
// FFmpeg's own timecode code.
#include "tarnvik/time/media_timecodes.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#ifdef TARNVIK_HAVE_AVUTIL
extern "C" {
#include <libavutil/timecode.h>
}
#endif

namespace tarnvik {
namespace {

const FrameRate kAllRates[] = {
    FrameRate::fps23_976(),         FrameRate::fps24(), FrameRate::fps25(), FrameRate::fps29_97(),
    FrameRate::fps29_97DropFrame(), FrameRate::fps30(), FrameRate::fps50(), FrameRate::fps59_94(),
    FrameRate::fps59_94DropFrame(), FrameRate::fps60()};

std::string at(std::int64_t frame, FrameRate rate) { return Timecode(frame, rate).toStdString(); }

TEST(MediaTimecodes, DropFrameSkipsTheFirstLabelsOfEveryMinuteButEveryTenth) {
  const FrameRate df = FrameRate::fps29_97DropFrame();
  EXPECT_EQ(at(0, df), "00:00:00;00");
  EXPECT_EQ(at(1799, df), "00:00:59;29");
  EXPECT_EQ(at(1800, df), "00:01:00;02");  // ;00 and ;01 do not exist
  EXPECT_EQ(at(3597, df), "00:01:59;29");
  EXPECT_EQ(at(3598, df), "00:02:00;02");
  EXPECT_EQ(at(17981, df), "00:09:59;29");
  EXPECT_EQ(at(17982, df), "00:10:00;00");  // the tenth minute keeps its labels
  EXPECT_EQ(at(17982 + 1800, df), "00:11:00;02");
  EXPECT_EQ(at(107892, df), "01:00:00;00");
  EXPECT_EQ(at(Timecode::framesPerDay(df) - 1, df), "23:59:59;29");
  EXPECT_EQ(Timecode::framesPerDay(df), 2589408);

  const FrameRate df60 = FrameRate::fps59_94DropFrame();
  EXPECT_EQ(at(3599, df60), "00:00:59;59");
  EXPECT_EQ(at(3600, df60), "00:01:00;04");
  EXPECT_EQ(at(35964, df60), "00:10:00;00");

  // Without drop-frame, the count is plain: 29.97 runs behind the clock.
  EXPECT_EQ(at(17982, FrameRate::fps29_97()), "00:09:59:12");
  EXPECT_EQ(at(90000, FrameRate::fps25()), "01:00:00:00");
  EXPECT_EQ(at(86399 * 24 + 23, FrameRate::fps23_976()), "23:59:59:23");
}

TEST(MediaTimecodes, EveryLabelReadsBackAsItsFrame) {
  for (const FrameRate rate : kAllRates) {
    SCOPED_TRACE(rate.name());
    const std::int64_t day = Timecode::framesPerDay(rate);
    // Around every minute boundary of the first hour, and the last frames of the day.
    std::vector<std::int64_t> frames;
    for (std::int64_t f = 0; f < 20 * 60 * 61; f += 7) frames.push_back(f);
    for (std::int64_t f = day - 200; f < day; ++f) frames.push_back(f);
    for (const std::int64_t frame : frames) {
      const Timecode tc(frame, rate);
      Error error;
      const auto back = Timecode::fromString(tc.toStdString(), rate, &error);
      ASSERT_TRUE(back) << tc.toStdString() << ": " << error.localizedDescription().utf8();
      ASSERT_EQ(back->frameNumber(), frame) << tc.toStdString();
      ASSERT_EQ(
          tc, *Timecode::fromComponents(tc.hours(), tc.minutes(), tc.seconds(), tc.frames(), rate));
    }
  }
}

TEST(MediaTimecodes, ParsingRefusesWhatNoFrameIsLabelled) {
  const FrameRate df = FrameRate::fps29_97DropFrame();
  Error error;
  EXPECT_FALSE(Timecode::fromString("00:01:00;01", df, &error));
  EXPECT_EQ(error.code(), TimecodeFormattingError);
  EXPECT_EQ(error.localizedDescription().utf8(),
            "“00:01:00;01” is not a timecode at 29.97 drop-frame: drop-frame counting skips "
            "frames 00 to 01 at the start of every minute but every tenth.");
  EXPECT_EQ(Timecode::fromString("00:01:00;02", df)->frameNumber(), 1800);
  EXPECT_EQ(Timecode::fromString("00:10:00;00", df)->frameNumber(), 17982);
  EXPECT_EQ(Timecode::fromString("00:10:00:00", df)->frameNumber(), 17982);  // ":" read too
  EXPECT_FALSE(Timecode::fromString("00:01:00;03", FrameRate::fps59_94DropFrame()));

  EXPECT_FALSE(Timecode::fromString("00:00:00:25", FrameRate::fps25(), &error));
  EXPECT_EQ(error.localizedDescription().utf8(),
            "“00:00:00:25” is not a timecode at 25: the frames run from 0 to 24.");
  EXPECT_FALSE(Timecode::fromString("24:00:00:00", FrameRate::fps25(), &error));
  EXPECT_FALSE(Timecode::fromString("00:60:00:00", FrameRate::fps25()));
  EXPECT_FALSE(Timecode::fromString("00:00:60:00", FrameRate::fps25()));
  for (const char* malformed : {"", "1:2:3", "00:00:00:00:00", "00;00:00:00", "0a:00:00:00",
                                "000:00:00:00", "00:00:00:", " 00:00:00:00", "-1:00:00:00"}) {
    EXPECT_FALSE(Timecode::fromString(malformed, FrameRate::fps25(), &error)) << malformed;
    EXPECT_EQ(error.localizedDescription().utf8(),
              std::string("“") + malformed + "” is not a timecode: it should read HH:MM:SS:FF.");
  }
  EXPECT_EQ(Timecode::fromString("1:2:3.4", FrameRate::fps25())->toStdString(), "01:02:03:04");
  EXPECT_EQ(Timecode::fromString(String(u"10:00:00:00").utf8(), FrameRate::fps24())->frameNumber(),
            864000);
}

TEST(MediaTimecodes, SecondsArithmeticAndOrder) {
  const FrameRate df = FrameRate::fps29_97DropFrame();
  EXPECT_EQ(Timecode::fromSeconds(600.6, df)->toStdString(), "00:10:00;18");
  EXPECT_EQ(Timecode::fromSeconds(600.6, df)->frameNumber(), 18000);
  EXPECT_EQ(Timecode::fromSeconds(3600, FrameRate::fps25())->toStdString(), "01:00:00:00");
  // One real hour reads one hour in drop-frame, and 3.6 seconds short without it.
  EXPECT_EQ(Timecode::fromSeconds(3600, df)->toStdString(), "01:00:00;00");
  EXPECT_EQ(Timecode::fromSeconds(3600, FrameRate::fps29_97())->toStdString(), "00:59:56:12");
  EXPECT_FALSE(Timecode::fromSeconds(std::nan(""), df));
  EXPECT_NEAR(Timecode(17982, df).secondsValue(), 599.9994, 1e-4);

  Timecode tc = *Timecode::fromString("00:00:59;29", df);
  EXPECT_EQ((tc + 1).toStdString(), "00:01:00;02");
  tc += 1;
  tc -= 2;
  EXPECT_EQ(tc.toStdString(), "00:00:59;28");
  // Around midnight, both ways.
  EXPECT_EQ((Timecode(0, df) - 1).toStdString(), "23:59:59;29");
  EXPECT_EQ((*Timecode::fromString("23:59:59;29", df) + 1).toStdString(), "00:00:00;00");
  EXPECT_EQ(Timecode(17982, df).framesSince(Timecode(1800, df)), 16182);
  EXPECT_LT(Timecode(5, df), Timecode(6, df));
  EXPECT_NE(Timecode(5, df), Timecode(5, FrameRate::fps29_97()));
  try {
    (void)Timecode(5, df).framesSince(Timecode(5, FrameRate::fps25()));
    ADD_FAILURE() << "no exception";
  } catch (const Exception& e) {
    EXPECT_EQ(e.name(), String(NSInvalidArgumentException));
    EXPECT_EQ(e.reason().utf8(),
              "Timecode::framesSince: the timecodes count at different rates (29.97 "
              "drop-frame and 25)");
  }
}

TEST(MediaTimecodes, FrameRatesByName) {
  EXPECT_EQ(FrameRate::fromString("29.97df"), FrameRate::fps29_97DropFrame());
  EXPECT_EQ(FrameRate::fromString("29.97 DF"), FrameRate::fps29_97DropFrame());
  EXPECT_EQ(FrameRate::fromString("59.94-df"), FrameRate::fps59_94DropFrame());
  EXPECT_EQ(FrameRate::fromString("24000/1001"), FrameRate::fps23_976());
  EXPECT_EQ(FrameRate::fromString("25"), FrameRate::fps25());
  Error error;
  EXPECT_FALSE(FrameRate::fromString("25df", &error));
  EXPECT_EQ(error.localizedDescription().utf8(),
            "“25df” is not a frame rate: use 23.976, 24, 25, 29.97, 29.97df, 30, 50, 59.94, "
            "59.94df or 60.");
  for (const FrameRate rate : kAllRates) {
    std::string name = rate.name();
    if (rate.isDropFrame()) name = name.substr(0, name.find(' ')) + "df";
    EXPECT_EQ(FrameRate::fromString(name), rate) << name;
  }
}

#ifdef TARNVIK_HAVE_AVUTIL
// FFmpeg prints the timecode of every frame of a day as we do.
TEST(MediaTimecodes, AgreeWithFfmpegOverAWholeDay) {
  for (const FrameRate rate : kAllRates) {
    SCOPED_TRACE(rate.name());
    AVTimecode reference;
    const AVRational fraction{static_cast<int>(rate.numerator()),
                              static_cast<int>(rate.denominator())};
    ASSERT_EQ(av_timecode_init(&reference, fraction,
                               (rate.isDropFrame() ? AV_TIMECODE_FLAG_DROPFRAME : 0) |
                                   AV_TIMECODE_FLAG_24HOURSMAX,
                               0, nullptr),
              0);
    char text[AV_TIMECODE_STR_SIZE];
    const std::int64_t day = Timecode::framesPerDay(rate);
    for (std::int64_t frame = 0; frame < day + 100; frame += 1 + frame % 13) {
      av_timecode_make_string(&reference, text, static_cast<int>(frame));
      ASSERT_EQ(Timecode(frame, rate).toStdString(), text) << frame;
    }
  }
}
#endif

}  // namespace
}  // namespace tarnvik
