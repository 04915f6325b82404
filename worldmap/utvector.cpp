// The two instantiations that the library holds: a polyline's points, a theme's polylines.

#include "kzgis/utvector.h"

template class UtVector<LatLon*>;
template class UtVector<UtVector<LatLon*>*>;
