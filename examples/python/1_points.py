#!/usr/bin/env python3
"""Points on a map and back: arrays in, arrays out."""
import numpy as np

import kzgis

chart = kzgis.Chart("mercator", base=(0, 10), radius=6371000.0)
x, y = chart.project(48.2, 16.37)  # scalars come back as floats
print(f"Vienna lies {x:.0f} m east of the base meridian and {y:.0f} m north of the equator")

# Latitudes down, longitudes across: shapes broadcast as NumPy's do.
lat = np.arange(-90, 91, 30)[:, None]
lon = np.arange(-180, 180, 90)[None, :]
x, y = chart.project(lat, lon)
print(f"{x.shape[0]} x {x.shape[1]} points, {np.isnan(x).sum()} without a place: the poles")

back_lat, back_lon = chart.unproject(x, y)
there = ~np.isnan(x)
error = np.abs(back_lat - lat)[there].max()
print("there and back within 1e-9 degrees:", bool(error < 1e-9))
