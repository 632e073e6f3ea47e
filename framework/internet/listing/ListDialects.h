// SPDX-License-Identifier: MIT
// The dialects of LIST, one reader of single rows each. Rows of Unix and DOS are recognised anywhere; they
// come first, so that no other dialect takes a row from them. Each of the others reads a row that tells
// enough by itself anywhere, and a poorer one in a listing that is known to be of its kind.
#pragma once

#include <cstdint>
#include <string_view>

#include "framework/internet/listing/CivilTime.h"
#include "framework/internet/listing/ListingRow.h"

namespace internet {

struct RowContext {
  std::int64_t now = 0;          // seconds UTC
  bool known = false;            // the listing is of this dialect
  bool clockBehindYear = false;  // its Unix rows show both, in this order
};

// `ls -l`, of z/OS and the Unix-like rows of WFTPD too; months in many languages.
bool readUnixRow(std::string_view line, const RowContext& context, RawRow& row) noexcept;
// The fields behind the mode of such a row up to the date, and `behind` it the name. False without a date, or
// when no size (or, of a `device`, its numbers) stands before it.
bool readSizeAndDate(RowFields& fields, const RowContext& context, bool device, RawRow& row) noexcept;
// A date as `ls` writes it in languages other than English.
bool readLocalDate(RowFields& fields, std::int64_t now, RowTime& time) noexcept;
// "m\xc3\xa4r" (any case of ASCII letters, UTF-8 or Latin-1, with or without a full stop) -> 3; 0 when it is
// no month in any of the known languages.
int monthOfLocalName(std::string_view name) noexcept;

bool readDosRow(std::string_view line, RawRow& row) noexcept;

struct Dialect {
  // Whether the row announces rows of this dialect, or belongs to the frame around them.
  bool (*isHeader)(std::string_view line) noexcept;
  bool (*readRow)(std::string_view line, const RowContext& context, RawRow& row) noexcept;
  // The rest of an entry whose name is alone in its row; null where names are never alone.
  bool (*readRest)(std::string_view line, RawRow& row) noexcept;
};

// For dialects whose rows nothing announces.
inline bool noHeader(std::string_view) noexcept { return false; }

extern const Dialect kEplf;         // Easily Parsed LIST Format
extern const Dialect kVms;          // OpenVMS: DIRECTORY
extern const Dialect kOs400;        // IBM i, its own list format
extern const Dialect kDataSets;     // MVS: data sets
extern const Dialect kMembers;      // MVS: members of a library with ISPF statistics
extern const Dialect kLoadModules;  // MVS: members of a load library
extern const Dialect kNonStop;      // HP NonStop: Guardian files
extern const Dialect kNetware;

}  // namespace internet
