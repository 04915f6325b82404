// A borrowed pair of coordinate arrays: nothing here looks at what the addresses name.

#include "kzgis/polytree.h"

KZ_GIS_VertexList_c::KZ_GIS_VertexList_c(kz_ulong count, const double* x, const double* y)
    : count_(count), x_(x), y_(y) {}

KZ_GIS_VertexList_c::~KZ_GIS_VertexList_c() = default;

void KZ_GIS_VertexList_c::SetVertices(kz_ulong count, const double* x, const double* y) {
  count_ = count;
  x_ = x;
  y_ = y;
}

void KZ_GIS_VertexList_c::GetVertices(kz_ulong* count, const double** x, const double** y) const {
  *count = count_;
  *x = x_;
  *y = y_;
}

kz_ulong KZ_GIS_VertexList_c::NumberOfVertices() const { return count_; }

const double* KZ_GIS_VertexList_c::XVertices() const { return x_; }

const double* KZ_GIS_VertexList_c::YVertices() const { return y_; }
