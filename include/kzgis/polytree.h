#ifndef KZGIS_POLYTREE_H
#define KZGIS_POLYTREE_H

#include <memory>
#include <vector>

#include "kzgis/export.h"
#include "kzgis/types.h"

namespace kzgis::polytree {
class RingTree;
}

// Rings that share one pair of coordinate arrays, nested by containment and cut into
// triangles.  Statuses are those of kzgis/types.h; here 2 means refused.  No output
// address may be null.
//
// Different from the rest of the library: a node answers even a question by one thread at a
// time, since it may have to compute its box first; and of `KZ_GIS_PolygonTree_c::Triangulate`,
// as of all that uses the tables of kzgis/triangulate.h, one call may run at a time in the whole
// process.

/// Names a pair of coordinate arrays, which it borrows: the caller keeps them alive as
/// long as anything refers to them.  Copies name the same arrays.
class KZGIS_EXPORT KZ_GIS_VertexList_c {
 public:
  /// Names `count` vertices.
  KZ_GIS_VertexList_c(kz_ulong count, const double* x, const double* y);
  KZ_GIS_VertexList_c(const KZ_GIS_VertexList_c& other) = default;
  KZ_GIS_VertexList_c& operator=(const KZ_GIS_VertexList_c& other) = default;
  virtual ~KZ_GIS_VertexList_c();

  /// Names other vertices.
  void SetVertices(kz_ulong count, const double* x, const double* y);
  /// Gives the count and both arrays.
  void GetVertices(kz_ulong* count, const double** x, const double** y) const;
  /// Number of entries in each array.
  kz_ulong NumberOfVertices() const;
  /// X of each vertex.
  const double* XVertices() const;
  /// Y of each vertex.
  const double* YVertices() const;

 private:
  kz_ulong count_;
  const double* x_;
  const double* y_;
};

/// A node of an ordered tree: a link to its parent and an array of links to its children.
///
/// It owns the array, not the children.  Only classes that derive from it can be made.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): nobody deletes a bare node
class KZGIS_EXPORT KZ_GIS_TreeNode_c {
 public:
  /// The parent; on a node that has none, the node itself.
  KZ_GIS_TreeNode_c& Parent();
  /// Number of children.
  kz_ulong NumberOfChildren() const;
  /// Child number `i`, from 0 in the order of insertion; past the end, the node itself.
  KZ_GIS_TreeNode_c& Child(kz_ulong i);
  const KZ_GIS_TreeNode_c& Child(kz_ulong i) const;

  /// Appends `node` to the children and becomes its parent.
  ///
  /// The children that `node` was among before keep it: see `Reparent`.
  ///
  /// @return 1; 2 when it is a child already; 14 when the array cannot grow, and
  ///         everything stays as it was
  kz_ulong InsertChild(KZ_GIS_TreeNode_c& node);
  /// Appends `node` to the parent's children.
  /// @return as `InsertChild`; 2 also when there is no parent
  kz_ulong InsertSibling(KZ_GIS_TreeNode_c& node);
  /// Takes `node` from the children, the others keeping their order.  Its link to this
  /// parent stays as it is.
  /// @return 1; 2 when it is not among the children
  kz_ulong RemoveChild(KZ_GIS_TreeNode_c& node);
  /// Moves this node from its parent's children to the end of `newParent`'s.
  ///
  /// @return 1, also when `newParent` is the parent already; 2 when there is no parent or
  ///         it does not list this node; else the status with which `newParent` refused
  ///         it, and this node is the last child of its old parent
  kz_ulong Reparent(KZ_GIS_TreeNode_c& newParent);

 protected:
  KZ_GIS_TreeNode_c() = default;
  /// Copies the links: the children are shared, and their parent is still `other`.
  /// Without memory for the array the copy has no children.
  KZ_GIS_TreeNode_c(const KZ_GIS_TreeNode_c& other);
  KZ_GIS_TreeNode_c& operator=(const KZ_GIS_TreeNode_c& other);
  virtual ~KZ_GIS_TreeNode_c();

 private:
  friend class KZ_GIS_PolygonTree_c;

  kz_ulong Append(KZ_GIS_TreeNode_c& node);
  kz_ulong PositionOf(const KZ_GIS_TreeNode_c& node) const;
  void CopyChildren(const KZ_GIS_TreeNode_c& other);

  KZ_GIS_TreeNode_c* parent_ = nullptr;
  kz_ulong count_ = 0;
  kz_ulong capacity_ = 0;
  KZ_GIS_TreeNode_c** children_ = nullptr;
};

/// One closed ring, given by indices into a vertex list, with its bounding box.
///
/// A ring may be open or end with a vertex that repeats the first; that makes no
/// difference to any answer.  The vertex list is borrowed.  An index that the vertex list
/// does not have stands for a vertex that is not a number.  A node that finds no memory for a
/// copy of indices, by construction, copy or assignment, has no indices.
class KZGIS_EXPORT KZ_GIS_PolygonNode_c : public KZ_GIS_TreeNode_c {
 public:
  /// A node without vertex list and indices; its box is all zeros.
  KZ_GIS_PolygonNode_c() = default;
  /// Refers to `list`, copies the indices and stores the box as given.
  KZ_GIS_PolygonNode_c(KZ_GIS_VertexList_c& list, kz_ulong count, const kz_ulong* indices,
                       double xMin, double yMin, double xMax, double yMax);
  /// Copies all but the tree links: the copy has neither parent nor children.
  KZ_GIS_PolygonNode_c(const KZ_GIS_PolygonNode_c& other);
  /// Copies all but the tree links, which stay as they were.
  KZ_GIS_PolygonNode_c& operator=(const KZ_GIS_PolygonNode_c& other);
  ~KZ_GIS_PolygonNode_c() override;

  /// Replaces the indices by a copy of `indices`, which may be the node's own.
  ///
  /// The box stays.
  ///
  /// @return 1; 14 without memory, or 2 when `indices` is null and `count` is not 0: the
  ///         node then has no indices
  kz_ulong SetVertices(kz_ulong count, const kz_ulong* indices);
  /// Gives the count and the node's own array, valid until the indices are replaced.
  /// @return 1
  kz_ulong GetVertices(kz_ulong* count, const kz_ulong** indices) const;
  /// Number of indices.
  kz_ulong NumberOfVertices() const;

  /// Sets the vertex list that the indices refer to, and gives it back.
  KZ_GIS_VertexList_c& VertexList(KZ_GIS_VertexList_c& list);
  /// The vertex list; one without vertices while none was set.
  KZ_GIS_VertexList_c& VertexList() const;

  /// Stores the box, unchecked.  A box of a single point, such as all zeros, makes the
  /// next `Inside` or `Contains` compute the true one; any other is trusted.
  void SetBounds(double xMin, double yMin, double xMax, double yMax);
  /// Gives the box.
  void GetBounds(double* xMin, double* yMin, double* xMax, double* yMax) const;

  /// 1 when this ring lies inside `other`, else 0.
  ///
  /// Rings with disjoint boxes do not.  Otherwise a single vertex decides: the first whose
  /// index is not `other`'s at the same position.  The boundary is inside, but for vertical
  /// edges with the inside on their right.  A ring whose indices all are `other`'s, itself for
  /// one, lies inside.
  kz_ulong Inside(KZ_GIS_PolygonNode_c& other);
  /// 1 when `other` lies inside this ring, else 0, as by `other.Inside(*this)`.
  kz_ulong Contains(KZ_GIS_PolygonNode_c& other);

  /// Reverses the order of the indices.
  void SwapVertexOrder();

 private:
  friend class kzgis::polytree::RingTree;

  struct Vertex {
    double x, y;
  };

  static kz_ulong Inside(KZ_GIS_PolygonNode_c& inner, KZ_GIS_PolygonNode_c& outer);
  kz_ulong ComputeBounds();
  kz_ulong PointInPolygon(double px, double py) const;
  kz_ulong NumberOfEdges() const;
  bool CrossEdges(double px, double py, kz_ulong begin, kz_ulong end, kz_ulong* parity) const;
  struct Corners;
  Corners ListCorners() const;
  Vertex At(kz_ulong position) const;
  double HeightBefore(kz_ulong position) const;
  bool BoxIsPoint() const;

  KZ_GIS_VertexList_c* list_ = nullptr;
  kz_ulong count_ = 0;
  kz_ulong* indices_ = nullptr;
  double x_min_ = 0.0;
  double y_min_ = 0.0;
  double x_max_ = 0.0;
  double y_max_ = 0.0;
};

/// Arranges rings by containment and cuts what they enclose into triangles.
///
/// Outer boundaries are at depth 1, holes under the boundary around them at depth 2,
/// islands in a hole under it at depth 3, and so on: odd depths are filled, even ones are
/// not.  The coordinate arrays are borrowed; the caller keeps them alive.
///
/// Rings are nested one after the other, in the order given, each by a single vertex
/// (`KZ_GIS_PolygonNode_c::Inside`).  Of the rings that a later one encloses, one that
/// stands just behind another that has moved under it is left where it was.  Where two or
/// more rings come before the one around them the tree can therefore be wrong; give
/// boundaries before their holes, and holes before their islands.  No walk of the tree
/// needs stack for its depth.
///
/// As a rule the time grows with the vertices and a little more.  It grows with the square of the
/// number of rings where their boxes all overlap (20,000 slivers side by side, on the slant: ten
/// seconds), or where they lie in each other and every one has a second child (20,000 levels:
/// twenty).  `kzgis::nest` (kzgis/mesh.h) takes a fraction of a second for either, and gives the
/// true containment in any order.
class KZGIS_EXPORT KZ_GIS_PolygonTree_c {
 public:
  /// An empty tree.
  KZ_GIS_PolygonTree_c();
  /// Nests `numPolygons` rings, laid end to end in `x` and `y` as in a polygon record of a
  /// shapefile.
  ///
  /// Ring p runs from `polygonStarts[p]` to the next ring's start, the last one to
  /// `totalVertices`; a last vertex that equals the first is dropped, from a ring of one
  /// vertex too.  Boundaries run clockwise and holes counter-clockwise, if they are to be
  /// triangulated.  The four bounds are ignored.
  ///
  /// The tree stays empty, which `NumberOfConnections` shows by leaving its count alone,
  /// when memory runs out, an array is missing, or the starts decrease or point past the
  /// vertices.
  KZ_GIS_PolygonTree_c(double xMin, double yMin, double xMax, double yMax, kz_ulong numPolygons,
                       const kz_ulong* polygonStarts, kz_ulong totalVertices, const double* x,
                       const double* y);
  /// Copies deeply, except for the borrowed coordinates.  Without memory for it the copy
  /// is empty, the target of an assignment too.
  KZ_GIS_PolygonTree_c(const KZ_GIS_PolygonTree_c& other);
  KZ_GIS_PolygonTree_c& operator=(const KZ_GIS_PolygonTree_c& other);
  virtual ~KZ_GIS_PolygonTree_c();

  /// Counts the triangle corners that `Triangulate` writes, three per triangle.
  ///
  /// A boundary with h holes and V vertices, those of the holes included, adds
  /// 3 (V + 2 (h - 1)), modulo 2^32.  A boundary of fewer than two vertices makes that
  /// wrap; it has no triangles, and `Triangulate` will answer 2 without writing any.
  ///
  /// @return 1; an empty tree leaves `*count` alone
  kz_ulong NumberOfConnections(kz_ulong* count) const;

  /// Cuts every boundary, less its holes, into triangles without new vertices.
  ///
  /// Triangles are counter-clockwise, or flat where three vertices lie on a line.  Where a
  /// ring touches itself or another, or has no inside, fewer are needed than were announced:
  /// flat ones that name a vertex twice make up the number.  A boundary's triangles stand behind
  /// those of the islands in its holes; otherwise in the order of the tree.
  ///
  /// Of each boundary's triangles it is proved, in exact arithmetic, that none is clockwise, and
  /// that every point off the edges lies in as many of them as its contours wind round it: once
  /// in the boundary and outside its holes, and nowhere else, if no contour crosses itself or
  /// another.  The triangles are those of `triangulate_polygon`, on the tables of the process but
  /// without its messages.  Where these are not there or not right, `kzgis::triangulate` takes
  /// the contours for rings that may touch; then it is proved besides that no point lies in two
  /// triangles.
  ///
  /// At its peak it takes no more than 1300 bytes per vertex of a boundary of a million; the
  /// tables of the process, most of them, stay until the next triangulation or `release_tables`.
  ///
  /// @param count        number of indices written
  /// @param connections  takes three indices into the coordinate arrays per triangle; has
  ///                     room for as many as `NumberOfConnections` gives, and no more are
  ///                     written
  /// @return 1; 2 when a boundary could not be triangulated: its rings cross or run the wrong
  ///         way, or it has less than three corners; 14 without memory.  After a failure `*count`
  ///         and `connections` hold the boundaries before that one, complete.  An empty tree leaves
  ///         both alone
  kz_ulong Triangulate(kz_ulong* count, kz_ulong* connections) const;

 private:
  kz_ulong BuildTree(kz_ulong numPolygons, const kz_ulong* polygonStarts, kz_ulong totalVertices,
                     const double* x, const double* y);
  kz_ulong AddRings(kz_ulong numPolygons, const kz_ulong* polygonStarts);
  kz_ulong Nest();
  bool CopyFrom(const KZ_GIS_PolygonTree_c& other);
  void Clear();

  std::unique_ptr<KZ_GIS_VertexList_c> vertex_list_;  // none: the tree is empty
  // The root, then the rings as they were given.  They stay where they are: links name
  // their addresses.
  std::vector<KZ_GIS_PolygonNode_c> nodes_;
  // Places in nodes_ of the boundaries, those inside a ring before the ring.
  std::vector<kz_ulong> boundaries_;
};

#endif
