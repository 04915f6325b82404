// The links of an ordered tree.  The children stand in one array from the C heap, which
// grows by ten and keeps their order.
//
// Nothing keeps the two directions of a link together: removing a child leaves its link to the
// parent, and a copied node has children whose parent is another (docs/classic.md).  So
// every operation asks the list that it changes, and believes no link from below.

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "kzgis/polytree.h"

using namespace kzgis;

namespace {

constexpr kz_ulong kGrowth = 10;
constexpr std::size_t kLinkSize = sizeof(void*);

}  // namespace

KZ_GIS_TreeNode_c::KZ_GIS_TreeNode_c(const KZ_GIS_TreeNode_c& other) : parent_(other.parent_) {
  CopyChildren(other);
}

KZ_GIS_TreeNode_c& KZ_GIS_TreeNode_c::operator=(const KZ_GIS_TreeNode_c& other) {
  if (this == &other) return *this;
  parent_ = other.parent_;
  std::free(children_);
  CopyChildren(other);
  return *this;
}

KZ_GIS_TreeNode_c::~KZ_GIS_TreeNode_c() { std::free(children_); }

/// Takes an array of its own with the same links; what `children_` named before is gone.
void KZ_GIS_TreeNode_c::CopyChildren(const KZ_GIS_TreeNode_c& other) {
  children_ =
      static_cast<KZ_GIS_TreeNode_c**>(std::malloc(std::size_t{other.capacity_} * kLinkSize));
  count_ = children_ != nullptr ? other.count_ : 0;
  capacity_ = children_ != nullptr ? other.capacity_ : 0;
  std::copy_n(other.children_, count_, children_);
}

KZ_GIS_TreeNode_c& KZ_GIS_TreeNode_c::Parent() { return parent_ != nullptr ? *parent_ : *this; }

kz_ulong KZ_GIS_TreeNode_c::NumberOfChildren() const { return count_; }

KZ_GIS_TreeNode_c& KZ_GIS_TreeNode_c::Child(kz_ulong i) {
  return i < count_ ? *children_[i] : *this;
}

const KZ_GIS_TreeNode_c& KZ_GIS_TreeNode_c::Child(kz_ulong i) const {
  return i < count_ ? *children_[i] : *this;
}

/// The place of `node` among the children; their number when it is none of them.
kz_ulong KZ_GIS_TreeNode_c::PositionOf(const KZ_GIS_TreeNode_c& node) const {
  return static_cast<kz_ulong>(std::find(children_, children_ + count_, &node) - children_);
}

kz_ulong KZ_GIS_TreeNode_c::InsertChild(KZ_GIS_TreeNode_c& node) {
  return PositionOf(node) == count_ ? Append(node) : status::refused;
}

/// Inserts a node that is known not to be a child yet.
kz_ulong KZ_GIS_TreeNode_c::Append(KZ_GIS_TreeNode_c& node) {
  if (count_ == capacity_) {
    const std::size_t grown = std::size_t{capacity_} + kGrowth;
    // An array that cannot grow is kept: its children can still be read.
    void* const block = std::realloc(children_, grown * kLinkSize);
    if (block == nullptr) return status::out_of_memory;
    children_ = static_cast<KZ_GIS_TreeNode_c**>(block);
    capacity_ = static_cast<kz_ulong>(grown);
  }
  children_[count_++] = &node;
  node.parent_ = this;
  return status::success;
}

kz_ulong KZ_GIS_TreeNode_c::InsertSibling(KZ_GIS_TreeNode_c& node) {
  return parent_ != nullptr ? parent_->InsertChild(node) : status::refused;
}

kz_ulong KZ_GIS_TreeNode_c::RemoveChild(KZ_GIS_TreeNode_c& node) {
  const kz_ulong position = PositionOf(node);
  if (position == count_) return status::refused;
  std::copy(children_ + position + 1, children_ + count_, children_ + position);
  --count_;
  return status::success;
}

kz_ulong KZ_GIS_TreeNode_c::Reparent(KZ_GIS_TreeNode_c& newParent) {
  KZ_GIS_TreeNode_c* const old_parent = parent_;
  if (old_parent == &newParent) return status::success;
  if (old_parent == nullptr) return status::refused;
  const kz_ulong removed = old_parent->RemoveChild(*this);
  if (removed != status::success) return removed;
  const kz_ulong inserted = newParent.InsertChild(*this);
  // The place just left is free, so this insertion cannot fail.
  if (inserted != status::success) old_parent->InsertChild(*this);
  return inserted;
}
