#include <random>

#include <gtest/gtest.h>

#include "HLIData/KeyedCollection.h"

namespace HLIData {
namespace {

using Collection = KeyedCollection<const std::string>;

std::shared_ptr<const std::string> Item(std::string text) {
  return std::make_shared<const std::string>(std::move(text));
}

std::string Joined(const Collection& collection) {
  std::string joined;
  for (const auto& item : collection)
    joined += (joined.empty() ? "" : " ") + *item;
  return joined;
}

template <typename Call>
ErrorNumber NumberOfError(Call&& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.Number();
  }
  ADD_FAILURE() << "no error was raised";
  return {};
}

TEST(KeyedCollection, KeepsTheOrderInWhichItemsWerePut) {
  Collection collection;
  collection.Add(Item("b"), "K2");
  collection.Add(Item("d"), "K4");
  collection.InsertBefore(1, Item("a"), "K1");
  collection.InsertAfter(2, Item("c"), "K3");
  collection.InsertAfter(4, Item("e"));
  EXPECT_EQ(Joined(collection), "a b c d e");
  EXPECT_EQ(*collection.Item("K3"), "c");
  EXPECT_EQ(*collection.Item(5), "e");
  EXPECT_EQ(collection.KeyAt(3), "K3");
  EXPECT_EQ(collection.KeyAt(5), "");

  collection.Remove(1);
  collection.Remove("K3");
  EXPECT_EQ(Joined(collection), "b d e");
  EXPECT_EQ(*collection.Item("K4"), *collection.Item(2));
}

TEST(KeyedCollection, HandsOutTheVeryObjectThatWasPut) {
  Collection collection;
  const auto item = Item("a");
  collection.Add(item, "K1");
  EXPECT_EQ(collection.Item("K1"), item);
  EXPECT_EQ(collection.Find("K1"), item);
  EXPECT_EQ(collection.Item(1), item);
  EXPECT_EQ(collection.Find("K2"), nullptr);
  EXPECT_EQ(collection.Find("k1"), nullptr) << "keys compare with their case";
}

TEST(KeyedCollection, RefusesWhatItCannotDoAndStaysAsItWas) {
  Collection collection;
  EXPECT_EQ(NumberOfError([&] { collection.InsertBefore(1, Item("x")); }), ErrorNumber::BadPosition);
  collection.Add(Item("a"), "K1");
  collection.Add(Item("b"));

  EXPECT_EQ(NumberOfError([&] { collection.Add(Item("x"), "K1"); }), ErrorNumber::DuplicateKey);
  EXPECT_EQ(NumberOfError([&] { collection.InsertBefore(1, Item("x"), "K1"); }), ErrorNumber::DuplicateKey);
  EXPECT_EQ(NumberOfError([&] { collection.Add(nullptr, "K3"); }), ErrorNumber::ObjectNotSet);
  for (const std::int32_t position : {0, -1, 3, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(NumberOfError([&] { collection.Item(position); }), ErrorNumber::BadPosition);
    EXPECT_EQ(NumberOfError([&] { collection.Remove(position); }), ErrorNumber::BadPosition);
    EXPECT_EQ(NumberOfError([&] { collection.InsertAfter(position, Item("x")); }), ErrorNumber::BadPosition);
  }
  EXPECT_EQ(NumberOfError([&] { collection.Item("K2"); }), ErrorNumber::UnknownKey);
  EXPECT_EQ(NumberOfError([&] { collection.Remove("K2"); }), ErrorNumber::UnknownKey);
  EXPECT_EQ(NumberOfError([&] { collection.Remove(""); }), ErrorNumber::UnknownKey);

  EXPECT_EQ(Joined(collection), "a b");
  collection.Add(Item("c"), "K3");  // the refused item has not taken the key
  EXPECT_EQ(collection.Count(), 3);
}

TEST(KeyedCollection, KeyIsFreeAgainAfterItsItemWasRemoved) {
  Collection collection;
  collection.Add(Item("a"), "K1");
  collection.Remove(1);
  EXPECT_EQ(collection.Find("K1"), nullptr);
  collection.Add(Item("b"), "K1");
  EXPECT_EQ(*collection.Item("K1"), "b");
}

TEST(KeyedCollection, WalkOverItemsMayRemoveThem) {
  Collection collection;
  for (const char* key : {"K1", "K2", "K3", "K4"})
    collection.Add(Item(key), key);
  std::string walked;
  for (const auto& item : collection.Items()) {
    walked += *item;
    if (*item == "K2" || *item == "K4") collection.Remove(*item);
  }
  EXPECT_EQ(walked, "K1K2K3K4");
  EXPECT_EQ(Joined(collection), "K1 K3");
}

// Against a plain list of (key, text) pairs, with thousands of calls in random order.
TEST(KeyedCollection, AgreesWithAPlainListOverRandomCalls) {
  const auto start = std::random_device()();
  SCOPED_TRACE("random start " + std::to_string(start));
  std::mt19937 random(start);
  Collection collection;
  std::vector<std::pair<std::string, std::string>> list;
  for (int step = 0; step < 5000; ++step) {
    const std::string key = random() % 5 == 0 ? "" : "K" + std::to_string(random() % 60);
    const auto keyed =
        std::find_if(list.begin(), list.end(), [&](const auto& entry) { return entry.first == key; });
    const bool isKnown = !key.empty() && keyed != list.end();
    const auto at = static_cast<std::int32_t>(random() % (list.size() + 1));
    const std::string text = std::to_string(step);
    switch (random() % 4) {
      case 0:
      case 1:
        if (isKnown) {
          EXPECT_EQ(NumberOfError([&] { collection.Add(Item(text), key); }), ErrorNumber::DuplicateKey);
        } else if (at == 0) {
          list.empty() ? collection.Add(Item(text), key) : collection.InsertBefore(1, Item(text), key);
          list.insert(list.begin(), {key, text});
        } else {
          collection.InsertAfter(at, Item(text), key);
          list.insert(list.begin() + at, {key, text});
        }
        break;
      case 2:
        if (!isKnown) break;
        collection.Remove(key);
        list.erase(keyed);
        break;
      case 3:
        if (at == 0) break;
        collection.Remove(at);
        list.erase(list.begin() + (at - 1));
        break;
    }
    ASSERT_EQ(collection.Count(), static_cast<std::int32_t>(list.size()));
    if (step % 50 != 0) continue;
    for (std::size_t i = 0; i < list.size(); ++i) {
      ASSERT_EQ(*collection.Item(static_cast<std::int32_t>(i) + 1), list[i].second);
      ASSERT_EQ(collection.KeyAt(static_cast<std::int32_t>(i) + 1), list[i].first);
      if (!list[i].first.empty()) {
        ASSERT_EQ(*collection.Item(list[i].first), list[i].second);
      }
    }
  }
}

}  // namespace
}  // namespace HLIData
