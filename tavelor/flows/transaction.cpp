// SPDX-License-Identifier: MIT
// A sale and what a program writes beside it, as one.
#include "tavelor/flows/transaction.hpp"

#include "tavelor/flows/shop_inner.hpp"

namespace tavelor::flows {

struct Transaction::Inner {
  Inner(Shop::Inner& rooms) : shop(rooms), both(rooms.main(), rooms.documents()) {}

  Shop::Inner& shop;
  BothDatabases both;
  bool isCommitted = false;
};

Transaction::Transaction(Shop& shop) : inner_(std::make_unique<Inner>(*shop.inner_)) {}

Transaction::~Transaction() {
  if (!inner_->isCommitted) inner_->shop.forget();
}

const ConnectionPtr& Transaction::main() const {
  return inner_->shop.main();
}

const ConnectionPtr& Transaction::documents() const {
  return inner_->shop.documents();
}

void Transaction::commit() {
  inner_->both.commit(BothDatabases::First::kDocuments);
  inner_->isCommitted = true;
}

}  // namespace tavelor::flows
