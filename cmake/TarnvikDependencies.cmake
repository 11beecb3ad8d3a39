# Third-party libraries, all from Debian packages. The same lookups run again in the
# installed package configuration so that consumers get the same targets.
find_package(ICU 70 REQUIRED COMPONENTS uc i18n data)
find_package(PkgConfig REQUIRED)
pkg_check_modules(PLIST REQUIRED IMPORTED_TARGET GLOBAL libplist-2.0)
pkg_check_modules(MINIZIP REQUIRED IMPORTED_TARGET GLOBAL minizip)
pkg_check_modules(LIBDEFLATE REQUIRED IMPORTED_TARGET GLOBAL libdeflate)
pkg_check_modules(XXHASH REQUIRED IMPORTED_TARGET GLOBAL libxxhash)
find_package(Threads REQUIRED)
find_package(OpenSSL 3 REQUIRED COMPONENTS Crypto)
find_package(ZLIB REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(uriparser 0.9 CONFIG REQUIRED char)

# Qt 6 Widgets, for the optional adapter only; without it everything else builds as before.
find_package(Qt6 6.2 QUIET COMPONENTS Widgets)
if(Qt6Widgets_FOUND)
  set(TARNVIK_WITH_QT ON)
else()
  set(TARNVIK_WITH_QT OFF)
endif()
