// Everything the platform layer offers, in one include, floor by floor: base (strings,
// values, collections, data, dates, errors, objects, the file manager), text (the format
// engine, scanner, regular expressions), system (bundles, logging), time (calendars,
// date formatting) and net (URLs and requests).
//
//   #include "tarnvik/platform/foundation.hpp"
//   tarnvik::String s = tarnvik::stringWithFormat(u"%@ %d", u"take", 3);
#pragma once

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/character_set.hpp"
#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/directory_enumerator.hpp"
#include "tarnvik/platform/base/enumerator.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/geometry.hpp"
#include "tarnvik/platform/base/index_set.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/platform/base/map_table.hpp"
#include "tarnvik/platform/base/object.hpp"
#include "tarnvik/platform/base/set.hpp"
#include "tarnvik/platform/base/sort_descriptor.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/base/types.hpp"
#include "tarnvik/platform/base/value.hpp"
#include "tarnvik/platform/net/base64.hpp"
#include "tarnvik/platform/net/bundle_urls.hpp"
#include "tarnvik/platform/net/url.hpp"
#include "tarnvik/platform/net/url_request.hpp"
#include "tarnvik/platform/system/application.hpp"
#include "tarnvik/platform/system/bundle.hpp"
#include "tarnvik/platform/system/log.hpp"
#include "tarnvik/platform/system/process.hpp"
#include "tarnvik/platform/system/property_list.hpp"
#include "tarnvik/platform/system/user_defaults.hpp"
#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/platform/text/regular_expression.hpp"
#include "tarnvik/platform/text/scanner.hpp"
#include "tarnvik/platform/time/calendar.hpp"
#include "tarnvik/platform/time/date_formatter.hpp"
