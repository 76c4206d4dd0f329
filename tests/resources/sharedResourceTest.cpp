#include <gtest/gtest.h>

#include <string>

#include "jev3d/resources/mtResourceStorage.h"
#include "jev3d/resources/resourceBase.h"
#include "jev3d/resources/resourceInstance.h"

using namespace JEV;

namespace {

// A resource that counts its uploads and knows whether it is "on the device".
struct countingResource : CORE::resourceBase {
  explicit countingResource(int* alive) : alive(alive) { ++*alive; }
  ~countingResource() override { --*alive; }
  bool cache() override {
    ++caches;
    onDevice = true;
    return true;
  }
  bool isCached() const override { return onDevice; }
  bool discard() override {
    ++discards;
    onDevice = false;
    return false;  // the storage's discard is true whatever the resource says
  }
  bool clear() override {
    ++clears;
    onDevice = false;
    data.clear();
    return true;
  }

  int* alive;
  int caches = 0;
  int discards = 0;
  int clears = 0;
  bool onDevice = false;
  std::string data;
};

using resourcePointer = SYSTEM::sharedPointer<countingResource>;

class countingStorage : public CORE::mtResourceStorage<resourcePointer> {
 public:
  countingStorage() : mtResourceStorage(nullptr) {}
  ~countingStorage() override = default;

  // Loads `data` under `id`; an empty `data` stands for a file that does not read.
  bool load(const std::wstring& id, const std::string& data, int memoryManagement = 0,
            bool forceReload = false) {
    return loadResource(
        id, memoryManagement, forceReload, [this] { return new countingResource(&alive); },
        [&](countingResource& target) {
          if (data.empty()) return false;
          target.data = data;
          return true;
        });
  }

  int alive = 0;
};

using instance =
    CORE::resourceInstance<countingStorage, CORE::sharedResourceClient<resourcePointer>,
                           resourcePointer>;

// What the render-state stack does when it pushes a resource: upload once, on first use.
void use(instance& user) {
  resourcePointer& r = user.getSharedResource();
  if (!r.isNull() && !r->isCached()) r->cache();
}

countingResource* payload(countingStorage& s, const std::wstring& id) {
  return s.getEntry(id)->getPayload();
}

}  // namespace

TEST(sharedResource, clientsAreTheServersSlavesAndReadThroughIt) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"A", "a"));
  instance first(&s);
  instance second(&s);
  ASSERT_TRUE(first.connectToResourceStorage(L"A"));
  ASSERT_TRUE(second.connectToResourceStorage("A"));
  auto& server = *s.getEntry(L"A");
  EXPECT_EQ(server.getClientCount(), 2);
  EXPECT_EQ(first.getResourceId(), L"A");
  EXPECT_EQ(first.getSharedResource().get(), payload(s, L"A"));
  EXPECT_EQ(first.getSharedResource()->data, "a");
  EXPECT_FALSE(first.isNull());
  // A second link to the same server is refused.
  EXPECT_FALSE(first.connectToResourceStorage(L"A"));
  EXPECT_EQ(server.getClientCount(), 2);
  {
    instance copy(first);
    EXPECT_EQ(server.getClientCount(), 3);
    EXPECT_EQ(copy.getResourceId(), L"A");
    EXPECT_EQ(copy.getSharedResource().get(), payload(s, L"A"));
  }
  EXPECT_EQ(server.getClientCount(), 2);
  EXPECT_TRUE(first.disconnectToResourceStorage());
  EXPECT_EQ(first.getResourceId(), L"");
  EXPECT_TRUE(first.isNull());
  EXPECT_EQ(server.getClientCount(), 1);
}

TEST(sharedResource, policyZeroDiscardsWhenTheLastClientGoesAndUploadsAgainOnUse) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"A", "a", CORE::SRS_DISCARD_WITHOUT_CLIENTS));
  countingResource* r = payload(s, L"A");
  const int discardsAtLoad = r->discards;
  {
    instance first(&s);
    instance second(&s);
    ASSERT_TRUE(first.connectToResourceStorage(L"A"));
    ASSERT_TRUE(second.connectToResourceStorage(L"A"));
    use(first);
    use(second);
    // A second client does not upload again.
    EXPECT_EQ(r->caches, 1);
    EXPECT_TRUE(r->isCached());
    EXPECT_TRUE(first.disconnectToResourceStorage());
    EXPECT_EQ(r->discards, discardsAtLoad);
    EXPECT_TRUE(r->isCached());
    // second goes out of scope here: its client unlinks as it is destroyed.
  }
  EXPECT_EQ(r->discards, discardsAtLoad + 1);
  EXPECT_FALSE(s.isCached(L"A"));
  EXPECT_EQ(r->data, "a");  // the data stays in memory
  instance third(&s);
  ASSERT_TRUE(third.connectToResourceStorage(L"A"));
  use(third);
  EXPECT_EQ(r->caches, 2);
  EXPECT_TRUE(s.isCached(L"A"));
}

TEST(sharedResource, otherPoliciesKeepTheDeviceCopyWithoutClients) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"A", "a", CORE::SRS_KEEP_CACHED));
  countingResource* r = payload(s, L"A");
  EXPECT_EQ(r->discards, 0);
  {
    instance user(&s);
    ASSERT_TRUE(user.connectToResourceStorage(L"A"));
    use(user);
  }
  EXPECT_EQ(r->discards, 0);
  EXPECT_TRUE(r->isCached());
  // Setting policy 0 with no client left discards at once.
  s.getEntry(L"A")->setMemoryManagement(CORE::SRS_DISCARD_WITHOUT_CLIENTS);
  EXPECT_EQ(r->discards, 1);
  EXPECT_FALSE(r->isCached());
}

TEST(sharedResource, loadingKeepsTakenNamesAndLeavesNothingOnFailure) {
  countingStorage s;
  EXPECT_FALSE(s.load(L"", "a"));
  EXPECT_FALSE(s.load(L"A", ""));
  EXPECT_EQ(s.getEntryCount(), 0);
  EXPECT_EQ(s.alive, 0);
  ASSERT_TRUE(s.load(L"A", "old"));
  countingResource* r = payload(s, L"A");
  EXPECT_FALSE(s.load(L"A", "new"));
  EXPECT_EQ(r->data, "old");
  instance user(&s);
  ASSERT_TRUE(user.connectToResourceStorage(L"A"));
  // A reload that fails keeps the old data; one that reads refills the same object, so
  // a linked client sees the new data at once.
  EXPECT_FALSE(s.load(L"A", "", 0, true));
  EXPECT_EQ(r->data, "old");
  EXPECT_TRUE(s.load(L"A", "new", 0, true));
  EXPECT_EQ(payload(s, L"A"), r);
  EXPECT_EQ(user.getSharedResource()->data, "new");
  EXPECT_EQ(s.alive, 1);
}

TEST(sharedResource, unknownNamesAndPositions) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"B", "b"));
  ASSERT_TRUE(s.load(L"A", "a"));
  instance user(&s);
  ASSERT_TRUE(user.connectToResourceStorage(L"A"));
  EXPECT_FALSE(user.connectToResourceStorage(L"nothing"));
  EXPECT_EQ(user.getResourceId(), L"A");
  EXPECT_FALSE(user.connectToResourceStorage(7));
  EXPECT_EQ(user.getResourceId(), L"A");
  instance byPosition(&s);
  ASSERT_TRUE(byPosition.connectToResourceStorage(1));
  EXPECT_EQ(byPosition.getResourceId(), L"B");
  EXPECT_EQ(byPosition.getSharedResource()->data, "b");
  instance noStorage;
  EXPECT_FALSE(noStorage.connectToResourceStorage(L"A"));
  EXPECT_FALSE(noStorage.disconnectToResourceStorage());
  EXPECT_TRUE(noStorage.isNull());
  EXPECT_EQ(user.makeResourceString(), L"A: in memory");
  use(user);
  EXPECT_EQ(user.makeResourceString(), L"A: on the device");
  EXPECT_EQ(noStorage.makeResourceString(), L"(unnamed): no resource");
}

TEST(sharedResource, erasingTellsTheClientsThatTheNameIsGone) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"A", "a"));
  instance user(&s);
  ASSERT_TRUE(user.connectToResourceStorage(L"A"));
  EXPECT_FALSE(s.erase(L"nothing"));
  EXPECT_TRUE(s.erase("A"));
  EXPECT_EQ(user.getResourceId(), L"");
  // The storage held the last pointer to the server: it is gone, and with it the link.
  EXPECT_TRUE(user.isNull());
  EXPECT_EQ(s.alive, 0);
  EXPECT_FALSE(s.isValid(L"A"));
}

TEST(sharedResource, erasingAServerHeldElsewhereClearsItButKeepsTheLink) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"A", "a"));
  const auto kept = s.getEntry(L"A");
  instance user(&s);
  ASSERT_TRUE(user.connectToResourceStorage(L"A"));
  EXPECT_TRUE(s.erase(L"A"));
  EXPECT_EQ(user.getResourceId(), L"");
  EXPECT_EQ(kept->getClientCount(), 1);
  EXPECT_EQ(kept->getPayload()->clears, 1);
  EXPECT_EQ(user.getSharedResource()->data, "");
}

TEST(sharedResource, clearEmptiesTheStorageAndUnlinksEveryClient) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"A", "a"));
  ASSERT_TRUE(s.load(L"B", "b"));
  instance a(&s);
  instance b(&s);
  ASSERT_TRUE(a.connectToResourceStorage(L"A"));
  ASSERT_TRUE(b.connectToResourceStorage(L"B"));
  s.clear();
  EXPECT_EQ(s.getEntryCount(), 0);
  EXPECT_EQ(s.alive, 0);
  EXPECT_TRUE(a.isNull());
  EXPECT_TRUE(b.isNull());
  // Clients are not told: the ids stay.
  EXPECT_EQ(a.getResourceId(), L"A");
}

TEST(sharedResource, operationsByName) {
  countingStorage s;
  ASSERT_TRUE(s.load(L"A", "a"));
  EXPECT_FALSE(s.cache(L"nothing"));
  EXPECT_FALSE(s.discard(L"nothing"));
  EXPECT_FALSE(s.isCached(L"nothing"));
  EXPECT_TRUE(s.cache(L"A"));
  EXPECT_TRUE(s.isCached(L"A"));
  EXPECT_TRUE(s.discard(L"A"));  // though the resource answered false
  EXPECT_FALSE(s.isCached(L"A"));
}

TEST(sharedResource, serversCompareByPointerAndBlock) {
  int alive = 0;
  resourcePointer one(new countingResource(&alive));
  CORE::sharedResourceServer<resourcePointer> a(one);
  CORE::sharedResourceServer<resourcePointer> b(one);
  CORE::sharedResourceServer<resourcePointer> c(resourcePointer(new countingResource(&alive)));
  CORE::sharedResourceServer<resourcePointer> empty{resourcePointer()};
  EXPECT_TRUE(a == b);
  EXPECT_TRUE(a != c);
  EXPECT_TRUE(empty.isNull());
  EXPECT_EQ(empty.getPayload(), nullptr);
  // With no resource there is nothing to discard.
  empty.setMemoryManagement(0);
}
