// SPDX-License-Identifier: MIT
// Addresses of servers as one text.
#include "tavelor/services/engine/server_address.hpp"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::engine::test {

namespace {

std::string refusalOf(std::string_view uri) {
  try {
    serverAddress(uri);
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kInvalidCall);
    return error.description();
  }
  return "";
}

TEST(ServerAddress, NamesHostsDatabaseAndUser) {
  const ServerAddress address = serverAddress("postgresql://till@db1:5432,db2/shop");
  EXPECT_EQ(address.hosts, "db1:5432,db2");
  EXPECT_EQ(address.database, "shop");
  EXPECT_EQ(address.user, "till");
  EXPECT_EQ(address.tls, "prefer");
}

TEST(ServerAddress, TakesTheWordsOfTlsFilesAndTimeout) {
  const ServerAddress address = serverAddress(
      "postgres://db/shop?sslmode=verify-full&sslrootcert=/etc/ca.pem&passfile=/etc/pass&"
      "connect_timeout=3");
  EXPECT_EQ(address.tls, "verify-full");
  EXPECT_EQ(address.rootCertificate, "/etc/ca.pem");
  EXPECT_EQ(address.passwordFile, "/etc/pass");
  EXPECT_EQ(address.connectTimeoutS, 3);
  EXPECT_EQ(address.user, "");
}

TEST(ServerAddress, EscapedCharactersStandForThemselves) {
  const ServerAddress address = serverAddress("postgresql://a%40b@%2Frun%2Fpg/my%20shop");
  EXPECT_EQ(address.user, "a@b");
  EXPECT_EQ(address.hosts, "/run/pg");
  EXPECT_EQ(address.database, "my shop");
}

TEST(ServerAddress, APasswordIsRefusedAndNotRepeated) {
  for (const std::string_view uri :
       {"postgresql://till:secret@db/shop", "postgresql://db/shop?password=secret"}) {
    const std::string why = refusalOf(uri);
    EXPECT_NE(why.find("PGPASSWORD"), std::string::npos);
    EXPECT_EQ(why.find("secret"), std::string::npos);
  }
}

TEST(ServerAddress, WhatIsMissingOrUnknownIsNamed) {
  EXPECT_NE(refusalOf("shop").find("no address of a server"), std::string::npos);
  EXPECT_NE(refusalOf("postgresql:///shop").find("no host"), std::string::npos);
  EXPECT_NE(refusalOf("postgresql://db").find("no database"), std::string::npos);
  EXPECT_NE(refusalOf("postgresql://db/shop?colour=red").find("takes no colour"),
            std::string::npos);
  EXPECT_NE(refusalOf("postgresql://db/sh%2").find("two digits"), std::string::npos);
  EXPECT_NE(refusalOf("postgresql://db/shop?connect_timeout=soon").find("seconds"),
            std::string::npos);
}

}  // namespace

}  // namespace tavelor::engine::test
