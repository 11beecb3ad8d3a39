#include "tarnvik/time/media_timecodes.hpp"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <string>
#include <tuple>

namespace tarnvik {

namespace {

Error formattingError(const std::string& description) {
  return Error(NSCocoaErrorDomain, TimecodeFormattingError,
               Dictionary{{NSLocalizedDescriptionKey, String(description)}});
}

template <class T>
std::optional<T> failing(Error* error, const std::string& description) {
  if (error) *error = formattingError(description);
  return std::nullopt;
}

// Frames in ten minutes and in one dropping minute, at a drop-frame rate.
struct DropFrameSpans {
  std::int64_t tenMinutes, minute, dropped;
};

DropFrameSpans dropFrameSpans(FrameRate rate) {
  const std::int64_t nominal = rate.nominalFramesPerSecond();
  const std::int64_t dropped = rate.droppedFramesPerMinute();
  return {nominal * 600 - 9 * dropped, nominal * 60 - dropped, dropped};
}

// The frame's label counted as if no label were skipped (the labels a drop-frame count
// skips are added back).
std::int64_t labelCount(std::int64_t frame, FrameRate rate) {
  if (!rate.isDropFrame()) return frame;
  const auto [tenMinutes, minute, dropped] = dropFrameSpans(rate);
  const std::int64_t tens = frame / tenMinutes, within = frame % tenMinutes;
  std::int64_t label = frame + 9 * dropped * tens;
  // The first minute of ten keeps its labels; each later one skips `dropped`.
  if (within >= dropped) label += dropped * ((within - dropped) / minute);
  return label;
}

}  // namespace

std::optional<FrameRate> FrameRate::fromString(std::string_view text, Error* error) {
  std::string key;
  for (const char c : text) {
    if (c != ' ' && c != '-' && c != '_') key += static_cast<char>(std::tolower(c));
  }
  struct Named {
    const char* name;
    FrameRate rate;
  };
  static constexpr Named kRates[] = {
      {"23.976", fps23_976()},
      {"23.98", fps23_976()},
      {"24000/1001", fps23_976()},
      {"24", fps24()},
      {"25", fps25()},
      {"29.97", fps29_97()},
      {"30000/1001", fps29_97()},
      {"29.97df", fps29_97DropFrame()},
      {"30000/1001df", fps29_97DropFrame()},
      {"30", fps30()},
      {"50", fps50()},
      {"59.94", fps59_94()},
      {"60000/1001", fps59_94()},
      {"59.94df", fps59_94DropFrame()},
      {"60000/1001df", fps59_94DropFrame()},
      {"60", fps60()},
  };
  for (const Named& named : kRates) {
    if (key == named.name) return named.rate;
  }
  return failing<FrameRate>(
      error, "“" + std::string(text) +
                 "” is not a frame rate: use 23.976, 24, 25, 29.97, 29.97df, 30, 50, 59.94, "
                 "59.94df or 60.");
}

std::string FrameRate::name() const {
  std::string text;
  if (denominator_ == 1) {
    text = std::to_string(numerator_);
  } else {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.3f", framesPerSecond());
    text = buffer;
    while (text.back() == '0') text.pop_back();
  }
  return dropFrame_ ? text + " drop-frame" : text;
}

std::int64_t Timecode::framesPerDay(FrameRate rate) {
  if (!rate.isDropFrame()) return std::int64_t{rate.nominalFramesPerSecond()} * 86400;
  return dropFrameSpans(rate).tenMinutes * 6 * 24;
}

Timecode::Timecode(std::int64_t frameNumber, FrameRate rate) : frame_(0), rate_(rate) {
  const std::int64_t day = framesPerDay(rate);
  frame_ = frameNumber % day;
  if (frame_ < 0) frame_ += day;
}

std::optional<Timecode> Timecode::fromSeconds(double seconds, FrameRate rate) {
  if (!std::isfinite(seconds)) return std::nullopt;
  const long double frames =
      static_cast<long double>(seconds) * rate.numerator() / rate.denominator();
  const long double day = static_cast<long double>(framesPerDay(rate));
  // Wrapped first, so that any finite time gives a frame number that fits.
  const long double wrapped = std::fmod(frames, day);
  return Timecode(static_cast<std::int64_t>(std::floor(wrapped + 1e-6L)), rate);
}

std::optional<Timecode> Timecode::fromComponents(int hours, int minutes, int seconds, int frames,
                                                 FrameRate rate, Error* error) {
  const int nominal = static_cast<int>(rate.nominalFramesPerSecond());
  char text[48];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d%c%02d", hours, minutes, seconds,
                rate.isDropFrame() ? ';' : ':', frames);
  const std::string quoted = std::string("“") + text + "” is not a timecode at " + rate.name();
  if (hours < 0 || hours > 23)
    return failing<Timecode>(error, quoted + ": the hours run from 0 to 23.");
  if (minutes < 0 || minutes > 59) {
    return failing<Timecode>(error, quoted + ": the minutes run from 0 to 59.");
  }
  if (seconds < 0 || seconds > 59) {
    return failing<Timecode>(error, quoted + ": the seconds run from 0 to 59.");
  }
  if (frames < 0 || frames >= nominal) {
    return failing<Timecode>(
        error, quoted + ": the frames run from 0 to " + std::to_string(nominal - 1) + ".");
  }
  const int dropped = static_cast<int>(rate.droppedFramesPerMinute());
  if (dropped > 0 && seconds == 0 && minutes % 10 != 0 && frames < dropped) {
    return failing<Timecode>(error, quoted + ": drop-frame counting skips frames 00 to " +
                                        (dropped - 1 < 10 ? "0" : "") +
                                        std::to_string(dropped - 1) +
                                        " at the start of every minute but every tenth.");
  }
  const std::int64_t totalMinutes = std::int64_t{hours} * 60 + minutes;
  const std::int64_t label = (totalMinutes * 60 + seconds) * nominal + frames;
  return Timecode(label - dropped * (totalMinutes - totalMinutes / 10), rate);
}

std::optional<Timecode> Timecode::fromString(std::string_view text, FrameRate rate, Error* error) {
  // Four fields of one or two digits; the first three separated by ":", the last by ":",
  // ";", "." or ",".
  int fields[4] = {0, 0, 0, 0};
  std::size_t at = 0;
  bool wellFormed = true;
  for (int field = 0; field < 4 && wellFormed; ++field) {
    if (field > 0) {
      const char separator = at < text.size() ? text[at] : '\0';
      const bool allowed =
          separator == ':' ||
          (field == 3 && (separator == ';' || separator == '.' || separator == ','));
      if (!allowed) wellFormed = false;
      ++at;
    }
    std::size_t digits = 0;
    while (wellFormed && at < text.size() && text[at] >= '0' && text[at] <= '9' && digits < 2) {
      fields[field] = fields[field] * 10 + (text[at] - '0');
      ++at;
      ++digits;
    }
    if (digits == 0) wellFormed = false;
  }
  if (!wellFormed || at != text.size()) {
    return failing<Timecode>(
        error, "“" + std::string(text) + "” is not a timecode: it should read HH:MM:SS:FF.");
  }
  return fromComponents(fields[0], fields[1], fields[2], fields[3], rate, error);
}

Timecode::Fields Timecode::fields() const {
  const std::int64_t nominal = rate_.nominalFramesPerSecond();
  const std::int64_t label = labelCount(frame_, rate_);
  return Fields{static_cast<int>(label / (nominal * 3600)),
                static_cast<int>(label / (nominal * 60) % 60),
                static_cast<int>(label / nominal % 60), static_cast<int>(label % nominal)};
}

int Timecode::hours() const { return fields().hours; }
int Timecode::minutes() const { return fields().minutes; }
int Timecode::seconds() const { return fields().seconds; }
int Timecode::frames() const { return fields().frames; }

double Timecode::secondsValue() const {
  return static_cast<double>(static_cast<long double>(frame_) * rate_.denominator() /
                             rate_.numerator());
}

std::string Timecode::toStdString() const {
  const Fields f = fields();
  char text[32];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d%c%02d", f.hours, f.minutes, f.seconds,
                rate_.isDropFrame() ? ';' : ':', f.frames);
  return text;
}

std::int64_t Timecode::framesSince(const Timecode& other) const {
  if (!(other.rate_ == rate_)) {
    throw Exception(NSInvalidArgumentException,
                    String("Timecode::framesSince: the timecodes count at different rates (" +
                           rate_.name() + " and " + other.rate_.name() + ")"));
  }
  return frame_ - other.frame_;
}

std::strong_ordering operator<=>(const Timecode& a, const Timecode& b) {
  const auto key = [](const Timecode& t) {
    return std::tuple(t.rate_.numerator(), t.rate_.denominator(), t.rate_.isDropFrame(), t.frame_);
  };
  return key(a) <=> key(b);
}

}  // namespace tarnvik
