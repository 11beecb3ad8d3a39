// Media timecodes: the position of a frame as HH:MM:SS:FF at a video frame rate, with
// SMPTE drop-frame counting at 29.97 and 59.94 frames per second.
//
//   Timecode tc(17982, FrameRate::fps29_97DropFrame());
//   tc.stringValue();                         // "00:10:00;00"
//   auto parsed = Timecode::fromString("01:00:00:00", FrameRate::fps25(), &error);
//   (tc + 2).stringValue();                   // "00:10:00;02"
//
// A drop-frame timecode counts 30 (or 60) frames a second but skips the labels ;00 and ;01
// (;00 to ;03 at 59.94) at the start of every minute except every tenth, so that its clock
// keeps up with real time. Timecodes run from 00:00:00:00 to the last frame before 24 hours
// and wrap around midnight, as a recorder's do.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// The code of an error about timecode text or a frame rate (NSCocoaErrorDomain, the
// platform's formatting error).
inline constexpr Integer TimecodeFormattingError = 2048;

// A frame rate as an exact fraction (30000/1001 for 29.97), and whether timecodes at it
// count in drop-frame.
class FrameRate {
 public:
  static constexpr FrameRate fps23_976() { return FrameRate(24000, 1001, false); }
  static constexpr FrameRate fps24() { return FrameRate(24, 1, false); }
  static constexpr FrameRate fps25() { return FrameRate(25, 1, false); }
  static constexpr FrameRate fps29_97() { return FrameRate(30000, 1001, false); }
  static constexpr FrameRate fps29_97DropFrame() { return FrameRate(30000, 1001, true); }
  static constexpr FrameRate fps30() { return FrameRate(30, 1, false); }
  static constexpr FrameRate fps50() { return FrameRate(50, 1, false); }
  static constexpr FrameRate fps59_94() { return FrameRate(60000, 1001, false); }
  static constexpr FrameRate fps59_94DropFrame() { return FrameRate(60000, 1001, true); }
  static constexpr FrameRate fps60() { return FrameRate(60, 1, false); }

  // The rate a user names: "23.976", "24", "25", "29.97", "29.97df" (or "29.97-df",
  // "29.97 DF"), "30", "50", "59.94", "59.94df", "60", and the fractions "24000/1001",
  // "30000/1001", "60000/1001". nullopt, with an error that lists the rates, for anything
  // else.
  static std::optional<FrameRate> fromString(std::string_view text, Error* error = nullptr);

  std::uint32_t numerator() const { return numerator_; }
  std::uint32_t denominator() const { return denominator_; }
  bool isDropFrame() const { return dropFrame_; }
  // The frames a timecode counts in a second: 24, 25, 30, 50 or 60.
  std::uint32_t nominalFramesPerSecond() const {
    return (numerator_ + denominator_ / 2) / denominator_;
  }
  // The frame labels skipped at the start of a dropping minute: 2 at 29.97, 4 at 59.94, else 0.
  std::uint32_t droppedFramesPerMinute() const {
    return dropFrame_ ? nominalFramesPerSecond() / 15 : 0;
  }
  double framesPerSecond() const { return double(numerator_) / double(denominator_); }
  // "29.97 drop-frame", "25", "23.976".
  std::string name() const;

  friend bool operator==(const FrameRate&, const FrameRate&) = default;

 private:
  constexpr FrameRate(std::uint32_t numerator, std::uint32_t denominator, bool dropFrame)
      : numerator_(numerator), denominator_(denominator), dropFrame_(dropFrame) {}

  std::uint32_t numerator_;
  std::uint32_t denominator_;
  bool dropFrame_;
};

// A frame's position: its number since 00:00:00:00 and the rate it counts at.
class Timecode {
 public:
  // The frame, wrapped into the 24 hours (a negative number counts back from midnight).
  Timecode(std::int64_t frameNumber, FrameRate rate);

  // The frame on screen at the time, in seconds of real time (the frame whose span holds
  // it; a time that falls within a millionth of a frame of the next frame's start counts
  // as that frame, so that 600.6 s at 29.97 is frame 18000). nullopt for NaN or infinity.
  static std::optional<Timecode> fromSeconds(double seconds, FrameRate rate);
  // "HH:MM:SS:FF", the last separator also ";" (drop-frame's own), "." or ",". Hours up to
  // 23, minutes and seconds up to 59, frames below the nominal rate, and in drop-frame not
  // a label the count skips. nullopt with an error that quotes the text and says which
  // rule it breaks.
  static std::optional<Timecode> fromString(std::string_view text, FrameRate rate,
                                            Error* error = nullptr);
  // The same from the four fields.
  static std::optional<Timecode> fromComponents(int hours, int minutes, int seconds, int frames,
                                                FrameRate rate, Error* error = nullptr);

  std::int64_t frameNumber() const { return frame_; }
  FrameRate rate() const { return rate_; }
  int hours() const;
  int minutes() const;
  int seconds() const;
  int frames() const;
  // The real time at which the frame starts, in seconds.
  double secondsValue() const;
  // "HH:MM:SS:FF", with ";" before the frames in drop-frame.
  std::string toStdString() const;
  String stringValue() const { return String(toStdString()); }

  // Frame arithmetic, wrapping around midnight.
  Timecode operator+(std::int64_t frames) const { return Timecode(frame_ + frames, rate_); }
  Timecode operator-(std::int64_t frames) const { return Timecode(frame_ - frames, rate_); }
  Timecode& operator+=(std::int64_t frames) { return *this = *this + frames; }
  Timecode& operator-=(std::int64_t frames) { return *this = *this - frames; }
  // The frames from other to this one (negative when this one comes first). Both must
  // count at the same rate; an Exception (NSInvalidArgumentException) otherwise.
  std::int64_t framesSince(const Timecode& other) const;

  // Timecodes at the same rate order by frame; at different rates they are unequal and
  // order by rate first.
  friend bool operator==(const Timecode&, const Timecode&) = default;
  friend std::strong_ordering operator<=>(const Timecode& a, const Timecode& b);

  // The frames in 24 hours at the rate (2,589,408 at 29.97 drop-frame).
  static std::int64_t framesPerDay(FrameRate rate);

 private:
  struct Fields {
    int hours, minutes, seconds, frames;
  };
  Fields fields() const;

  std::int64_t frame_;
  FrameRate rate_;
};

}  // namespace tarnvik
