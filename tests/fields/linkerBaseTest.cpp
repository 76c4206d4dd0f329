#include "jev3d/fields/linkerBase.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "jev3d/fields/mtLinker.h"

using namespace JEV::SYSTEM;

namespace {

// The flags have no setter: classes that want one slave or one master derive.
template <class L>
struct tunedLinker : L {
  using base = linkerBase<dummyLinkerType>;
  explicit tunedLinker(bool manySlaves = true, bool manyMasters = true) {
    this->multipleSlaves = manySlaves;
    this->multipleMasters = manyMasters;
  }
  bool addAfter(base* slave, base* sibling) { return this->addSlaveAfter(slave, sibling); }
  bool addBefore(base* slave, base* sibling) { return this->addSlaveBefore(slave, sibling); }
  void drop(base* slave) { this->removeSlave(slave); }
};

template <class L>
class linkerTest : public ::testing::Test {
 protected:
  using node = tunedLinker<L>;
  using base = linkerBase<dummyLinkerType>;

  static std::vector<base*> slavesOf(const base& l) {
    std::vector<base*> out;
    for (int i = 0; i < l.getSlavesCount(); ++i)
      out.push_back(const_cast<base*>(l.getSlaveAtIndex(i)));
    return out;
  }
  static std::vector<base*> mastersOf(const base& l) {
    std::vector<base*> out;
    for (int i = 0; i < l.getMastersCount(); ++i)
      out.push_back(const_cast<base*>(l.getMasterAtIndex(i)));
    return out;
  }
};

using linkerKinds = ::testing::Types<linkerBase<dummyLinkerType>, mtLinker<dummyLinkerType>>;
TYPED_TEST_SUITE(linkerTest, linkerKinds);

TYPED_TEST(linkerTest, refusedConnectionsChangeNothing) {
  typename TestFixture::node a, m;
  EXPECT_EQ(a.connect(nullptr, true), nullptr);
  EXPECT_FALSE(a.isConnected());
  EXPECT_EQ(a.connect(&m, false), &a);
  EXPECT_EQ(a.connect(&m, true), nullptr);
  EXPECT_EQ(m.getSlavesCount(), 1);
  EXPECT_EQ(a.getMastersCount(), 1);
  // The refused second call did not touch the flag.
  EXPECT_FALSE(a.isFollowingMaster());
  EXPECT_EQ(a.connectAfter(&m, nullptr, true), nullptr);
  EXPECT_EQ(m.getSlavesCount(), 1);
}

TYPED_TEST(linkerTest, followIsOneFlagForAllMasters) {
  typename TestFixture::node n, a, b;
  n.connect(&a, false);
  EXPECT_FALSE(n.isFollowingMaster());
  n.connect(&b, true);
  EXPECT_TRUE(n.isFollowingMaster());
  EXPECT_EQ(TestFixture::mastersOf(n), (std::vector<linkerBase<dummyLinkerType>*>{&a, &b}));
  EXPECT_EQ(n.getFrontMaster(), &a);
  EXPECT_EQ(n.getBackMaster(), &b);
}

TYPED_TEST(linkerTest, siblingPlacementAndMissingSibling) {
  typename TestFixture::node m, a, b, c, d, stranger;
  a.connect(&m, true);
  c.connect(&m, true);
  EXPECT_EQ(b.connectBefore(&m, &c, true), &b);
  EXPECT_EQ(d.connectAfter(&m, &a, true), &d);
  using list = std::vector<linkerBase<dummyLinkerType>*>;
  EXPECT_EQ(TestFixture::slavesOf(m), (list{&a, &d, &b, &c}));
  EXPECT_EQ(m.getIndexOfSlave(&b), 2);
  EXPECT_EQ(m.getIndexOfSlave(&stranger), -1);

  typename TestFixture::node e;
  EXPECT_FALSE(m.addAfter(&e, &stranger));
  EXPECT_EQ(e.connectAfter(&m, &stranger, true), nullptr);
  EXPECT_EQ(e.connectBefore(&m, &stranger, true), nullptr);
  EXPECT_FALSE(e.isConnected());
  EXPECT_EQ(TestFixture::slavesOf(m), (list{&a, &d, &b, &c}));

  // Sibling insertion does not look for an existing entry: the slave appears twice, and
  // removal takes every entry.
  EXPECT_TRUE(m.addBefore(&a, &c));
  EXPECT_EQ(TestFixture::slavesOf(m), (list{&a, &d, &b, &a, &c}));
  m.drop(&a);
  EXPECT_EQ(TestFixture::slavesOf(m), (list{&d, &b, &c}));
}

TYPED_TEST(linkerTest, singleSlaveMasterDisplacesTheOldSlave) {
  typename TestFixture::node m(false, true), a, b;
  a.connect(&m, true);
  EXPECT_EQ(b.connect(&m, true), &b);
  EXPECT_EQ(m.getSlavesCount(), 1);
  EXPECT_EQ(m.getFrontSlave(), &b);
  EXPECT_FALSE(a.isConnected());
  EXPECT_FALSE(a.isConnectTo(&m));

  // The sibling itself is displaced before the search, so sibling placement fails.
  typename TestFixture::node c;
  EXPECT_EQ(c.connectAfter(&m, &b, true), nullptr);
  EXPECT_FALSE(b.isConnected());
  EXPECT_TRUE(m.isLeaf());
}

TYPED_TEST(linkerTest, singleMasterSlaveDropsOldMastersOnlyAfterAcceptance) {
  typename TestFixture::node n(true, false), a, b, c, sibling, stranger;
  n.connect(&a, true);
  n.connect(&b, true);
  EXPECT_EQ(TestFixture::mastersOf(n), (std::vector<linkerBase<dummyLinkerType>*>{&b}));
  EXPECT_TRUE(a.isLeaf());
  // A refusing master leaves the old one in place.
  EXPECT_EQ(n.connectAfter(&c, &stranger, true), nullptr);
  EXPECT_EQ(n.getFrontMaster(), &b);
  EXPECT_EQ(b.getSlavesCount(), 1);
}

TYPED_TEST(linkerTest, disconnectForms) {
  typename TestFixture::node n, a, b, stranger;
  n.connect(&a, true);
  n.connect(&b, true);
  n.disconnect(&stranger);
  EXPECT_EQ(n.getMastersCount(), 2);
  n.disconnect();  // the front master only
  EXPECT_EQ(n.getFrontMaster(), &b);
  EXPECT_TRUE(a.isLeaf());
  n.disconnect(&b, false);  // one-sided: b still lists n
  EXPECT_FALSE(n.isConnected());
  EXPECT_EQ(b.getFrontSlave(), &n);
  b.disconnectSlaves();
  EXPECT_TRUE(b.isLeaf());

  n.connect(&a, true);
  n.connect(&b, true);
  n.disconnectFromAllMaster();
  EXPECT_TRUE(a.isLeaf());
  EXPECT_TRUE(b.isLeaf());
}

TYPED_TEST(linkerTest, deathOfEitherEndCorrectsTheOther) {
  typename TestFixture::node s1, s2, grand;
  {
    typename TestFixture::node m;
    s1.connect(&m, true);
    s2.connect(&m, false);
    m.connect(&grand, true);
    EXPECT_EQ(grand.getSlavesCount(), 1);
  }
  EXPECT_FALSE(s1.isConnected());
  EXPECT_FALSE(s2.isConnected());
  EXPECT_TRUE(s1.isFollowingMaster());
  EXPECT_TRUE(grand.isLeaf());
  {
    typename TestFixture::node child;
    child.connect(&s1, true);
  }
  EXPECT_TRUE(s1.isLeaf());
}

TYPED_TEST(linkerTest, queriesOverTheLists) {
  typename TestFixture::node root, mid, leaf, other;
  mid.connect(&root, true);
  leaf.connect(&mid, true);
  EXPECT_TRUE(leaf.isChildOf(&root));
  EXPECT_TRUE(leaf.isChildOf(&mid));
  EXPECT_FALSE(leaf.isChildOf(&other));
  EXPECT_FALSE(root.isChildOf(&leaf));
  EXPECT_TRUE(leaf.isConnectTo(&mid));
  EXPECT_FALSE(leaf.isConnectTo(&root));
  EXPECT_EQ(root.getSlaveAtIndex(-1), nullptr);
  EXPECT_EQ(root.getSlaveAtIndex(1), nullptr);
  EXPECT_EQ(root.getSlaveAtIndex(0), &mid);
  EXPECT_EQ(leaf.getMasterAtIndex(0), &mid);
  EXPECT_EQ(leaf.getIndexOfMaster(&root), -1);

  typename TestFixture::node twin;
  other.connect(&root, false);
  leaf.connect(&other, false);
  twin.connectToMasterOf(leaf);
  EXPECT_EQ(TestFixture::mastersOf(twin),
            (std::vector<linkerBase<dummyLinkerType>*>{&mid, &other}));
  EXPECT_TRUE(twin.isFollowingMaster());

  typename TestFixture::node copy(twin);
  EXPECT_FALSE(copy.isConnected());
  EXPECT_TRUE(copy.isFollowingMaster());
  EXPECT_EQ(mid.getSlavesCount(), 2);
  EXPECT_EQ(mid.getIndexOfSlave(&copy), -1);
}

}  // namespace
