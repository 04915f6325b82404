#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <vector>

#include "kzgis/polytree.h"

namespace {

/// A node of the generic tree, which only derived classes can make.
class Node : public KZ_GIS_TreeNode_c {
 public:
  Node() = default;
  Node(const Node& other) = default;
  Node& operator=(const Node& other) = default;
  ~Node() override = default;
};

/// The addresses of all children, in order.
std::vector<const KZ_GIS_TreeNode_c*> children(KZ_GIS_TreeNode_c& node) {
  std::vector<const KZ_GIS_TreeNode_c*> result;
  for (kz_ulong i = 0; i < node.NumberOfChildren(); ++i) result.push_back(&node.Child(i));
  return result;
}
using Children = std::vector<const KZ_GIS_TreeNode_c*>;

class TreeNodeTest : public testing::Test {
 protected:
  /// root with the children a, b, c.
  TreeNodeTest() {
    root.InsertChild(a);
    root.InsertChild(b);
    root.InsertChild(c);
  }
  Node root, a, b, c, other;
};

TEST_F(TreeNodeTest, OnlyDerivedClassesCanBeMade) {
  EXPECT_FALSE(std::is_default_constructible_v<KZ_GIS_TreeNode_c>);
  EXPECT_FALSE(std::is_copy_constructible_v<KZ_GIS_TreeNode_c>);
  EXPECT_FALSE(std::is_destructible_v<KZ_GIS_TreeNode_c>);
}

TEST_F(TreeNodeTest, StartsWithoutLinks) {
  EXPECT_EQ(other.NumberOfChildren(), 0u);
  EXPECT_EQ(&other.Parent(), &other);
  EXPECT_EQ(&other.Child(0), &other);
}

TEST_F(TreeNodeTest, InsertChildAppendsAndLinksBack) {
  EXPECT_EQ(root.InsertChild(other), 1u);
  EXPECT_EQ(children(root), (Children{&a, &b, &c, &other}));
  EXPECT_EQ(&other.Parent(), &root);
}

TEST_F(TreeNodeTest, InsertChildRefusesAChildItHas) {
  EXPECT_EQ(root.InsertChild(a), 2u);
  EXPECT_EQ(children(root), (Children{&a, &b, &c}));
}

TEST_F(TreeNodeTest, InsertChildLeavesTheNodeAmongItsFormerSiblings) {
  EXPECT_EQ(other.InsertChild(b), 1u);
  EXPECT_EQ(&b.Parent(), &other);
  EXPECT_EQ(children(root), (Children{&a, &b, &c}));
  EXPECT_EQ(root.InsertChild(b), 2u);
}

TEST_F(TreeNodeTest, HoldsManyChildrenInOrder) {
  std::vector<Node> many(31);
  Children expected;
  Node top;
  for (Node& node : many) {
    EXPECT_EQ(top.InsertChild(node), 1u);
    expected.push_back(&node);
  }
  EXPECT_EQ(children(top), expected);
}

TEST_F(TreeNodeTest, ChildPastTheEndIsTheNodeItself) {
  EXPECT_EQ(&root.Child(2), &c);
  EXPECT_EQ(&root.Child(3), &root);
  EXPECT_EQ(&root.Child(5), &root);
  EXPECT_EQ(&root.Child(4294967295u), &root);
  const Node& reader = root;
  EXPECT_EQ(&reader.Child(1), &b);
  EXPECT_EQ(&reader.Child(5), &root);
}

TEST_F(TreeNodeTest, InsertSiblingAppendsToTheParent) {
  EXPECT_EQ(a.InsertSibling(other), 1u);
  EXPECT_EQ(children(root), (Children{&a, &b, &c, &other}));
  EXPECT_EQ(a.InsertSibling(b), 2u);
}

TEST_F(TreeNodeTest, InsertSiblingOfARootIsRefused) {
  EXPECT_EQ(root.InsertSibling(other), 2u);
  EXPECT_EQ(root.NumberOfChildren(), 3u);
}

TEST_F(TreeNodeTest, RemoveChildClosesTheGapAndKeepsTheParentLink) {
  EXPECT_EQ(root.RemoveChild(b), 1u);
  EXPECT_EQ(children(root), (Children{&a, &c}));
  EXPECT_EQ(&b.Parent(), &root);
}

TEST_F(TreeNodeTest, RemoveChildRefusesWhatIsNoChild) {
  EXPECT_EQ(root.RemoveChild(other), 2u);
  EXPECT_EQ(other.RemoveChild(a), 2u);
  EXPECT_EQ(root.RemoveChild(c), 1u);
  EXPECT_EQ(root.RemoveChild(c), 2u);
  EXPECT_EQ(children(root), (Children{&a, &b}));
}

TEST_F(TreeNodeTest, ReparentMovesToTheEndOfTheNewParent) {
  Node first;
  other.InsertChild(first);
  EXPECT_EQ(a.Reparent(other), 1u);
  EXPECT_EQ(children(root), (Children{&b, &c}));
  EXPECT_EQ(children(other), (Children{&first, &a}));
  EXPECT_EQ(&a.Parent(), &other);
}

TEST_F(TreeNodeTest, ReparentToThePresentParentChangesNothing) {
  EXPECT_EQ(a.Reparent(root), 1u);
  EXPECT_EQ(children(root), (Children{&a, &b, &c}));
}

TEST_F(TreeNodeTest, ReparentOfANodeThatItsParentDoesNotListIsRefused) {
  root.RemoveChild(a);
  EXPECT_EQ(a.Reparent(other), 2u);
  EXPECT_EQ(other.NumberOfChildren(), 0u);
  EXPECT_EQ(&a.Parent(), &root);
}

TEST_F(TreeNodeTest, ReparentOfARootIsRefused) {
  EXPECT_EQ(other.Reparent(root), 2u);
  EXPECT_EQ(root.NumberOfChildren(), 3u);
}

TEST_F(TreeNodeTest, ReparentRefusedByTheNewParentPutsTheNodeLast) {
  // `a` is listed by both, and its parent is root: so `other` refuses it.
  other.InsertChild(a);
  root.RemoveChild(a);
  root.InsertChild(a);
  EXPECT_EQ(children(root), (Children{&b, &c, &a}));
  root.RemoveChild(b);
  root.InsertChild(b);
  EXPECT_EQ(a.Reparent(other), 2u);
  EXPECT_EQ(children(root), (Children{&c, &b, &a}));
  EXPECT_EQ(children(other), (Children{&a}));
  EXPECT_EQ(&a.Parent(), &root);
}

TEST_F(TreeNodeTest, CopyingANodeSharesItsChildren) {
  Node copy(root);
  EXPECT_EQ(children(copy), (Children{&a, &b, &c}));
  EXPECT_EQ(&a.Parent(), &root);
  EXPECT_EQ(copy.InsertChild(other), 1u);
  EXPECT_EQ(root.NumberOfChildren(), 3u);
  Node copy_of_child(a);
  EXPECT_EQ(&copy_of_child.Parent(), &root);
}

TEST_F(TreeNodeTest, AssigningANodeReplacesItsLinks) {
  Node target;
  target.InsertChild(other);
  target = root;
  EXPECT_EQ(children(target), (Children{&a, &b, &c}));
  Node& self = target;
  target = self;
  EXPECT_EQ(children(target), (Children{&a, &b, &c}));
  target = other;
  EXPECT_EQ(target.NumberOfChildren(), 0u);
  EXPECT_EQ(target.InsertChild(a), 1u);
}

TEST_F(TreeNodeTest, DestroyingANodeLeavesItsChildren) {
  {
    Node top;
    top.InsertChild(other);
  }
  EXPECT_EQ(other.InsertChild(a), 1u);
}

}  // namespace
