// SPDX-License-Identifier: MIT
// Where a server is.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor::engine {

/// Where a server is, and as whom to speak to it. The password comes from the environment or from a
/// file, never through here, so that no message can show it.
struct TAVELOR_API ServerAddress {
  std::string hosts;  ///< "db1:5432,db2": tried in this order; a folder is that of a local socket
  std::string database;
  std::string user;             ///< "" for that of the operating system
  std::string passwordFile;     ///< "" for the usual places
  std::string tls = "prefer";   ///< "disable", "prefer", "require", "verify-ca" or "verify-full"
  std::string rootCertificate;  ///< a file, as the next two
  std::string certificate;
  std::string key;
  int connectTimeoutS = 10;  ///< for each host
  friend bool operator==(const ServerAddress&, const ServerAddress&) = default;
};

/// Of "postgresql://till@db1:5432,db2/shop?sslmode=verify-full", the form that all programs of such
/// servers know; %2F and the like stand for what would end a part. The words behind the question
/// mark are sslmode, sslrootcert, sslcert, sslkey, passfile and connect_timeout. Raises 5 for
/// anything else, and for one with a password in it, without repeating it.
TAVELOR_API ServerAddress serverAddress(std::string_view uri);

}  // namespace tavelor::engine
