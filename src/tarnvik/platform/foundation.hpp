// Everything the platform layer offers, in one include.
//
//   #include "tarnvik/platform/foundation.hpp"
//   tarnvik::String s = tarnvik::stringWithFormat(u"%@ %d", u"take", 3);
#pragma once

#include "tarnvik/platform/array.hpp"
#include "tarnvik/platform/bundle.hpp"
#include "tarnvik/platform/calendar.hpp"
#include "tarnvik/platform/character_set.hpp"
#include "tarnvik/platform/data.hpp"
#include "tarnvik/platform/date.hpp"
#include "tarnvik/platform/date_formatter.hpp"
#include "tarnvik/platform/dictionary.hpp"
#include "tarnvik/platform/error.hpp"
#include "tarnvik/platform/file_manager.hpp"
#include "tarnvik/platform/format.hpp"
#include "tarnvik/platform/key_value_coding.hpp"
#include "tarnvik/platform/log.hpp"
#include "tarnvik/platform/object.hpp"
#include "tarnvik/platform/regular_expression.hpp"
#include "tarnvik/platform/scanner.hpp"
#include "tarnvik/platform/set.hpp"
#include "tarnvik/platform/string.hpp"
#include "tarnvik/platform/types.hpp"
#include "tarnvik/platform/url.hpp"
#include "tarnvik/platform/url_request.hpp"
#include "tarnvik/platform/value.hpp"
