#include "kzgis/utvector.h"

template class UtVector<LatLon*>;
template class UtVector<UtVector<LatLon*>*>;
