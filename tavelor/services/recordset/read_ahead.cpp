// SPDX-License-Identifier: MIT
// Several reads with one wait for a server.
#include "tavelor/services/recordset/read_ahead.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

using Ahead = engine::Session::Ahead;

ReadAhead::ReadAhead(ConnectionPtr connection)
    : connection_(std::move(connection)),
      isFar_(connection_->waits() > 0 &&
             RecordsetParts::sessionOf(*connection_).ahead() == Ahead::kOff) {}

ReadAhead::~ReadAhead() {
  if (isFar_ && connection_->State() == ObjectState::kOpen) {
    RecordsetParts::sessionOf(*connection_).readAhead(Ahead::kOff);
  }
}

ReadAhead::Question::Question(Connection& connection) : connection_(connection) {
  RecordsetParts::sessionOf(connection).readAhead(Ahead::kAsk);
}

ReadAhead::Question::~Question() {
  RecordsetParts::sessionOf(connection_).readAhead(Ahead::kAnswer);
}

void ReadAhead::Question::mustBeItsEnd(const Error& error) const {
  if (error.number() != errors::kNoCurrentRecord &&
      error.number() != errors::kNotAllowedInContext) {
    throw;
  }
}

}  // namespace tavelor
