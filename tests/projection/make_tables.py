#!/usr/bin/env python3
"""Writes tests/data/projection_forward.csv and projection_inverse.csv.

Every value is computed with mpmath at 50 digits, so that it owes nothing to the code
under test nor to any host's mathematics library, and then rounded to a double.  Only pi
is short, as the projections have it.

    make_tables.py DIRECTORY
"""

import pathlib
import sys

from mpmath import acos, asin, atan, cos, exp, fabs, log, mp, mpc, mpf, sin, sqrt, tan

mp.dps = 50
PI = mpf(3.141592652589793)
H, Q = PI / 2, PI / 4
EARTH = 6378000.0


def rad(degrees):
    return mpf(degrees) / 180 * PI


def deg(radians):
    return radians / PI * 180


def wrap(degrees):
    degrees = mpf(degrees)
    while degrees < 0:
        degrees += 360
    while degrees >= 360:
        degrees -= 360
    return degrees


def clamp(degrees):
    return max(mpf(-90), min(mpf(90), mpf(degrees)))


def forward(kind, base, par, r, point):
    lat0, lon0 = base
    lat, lon, h = point
    f0, f, d = rad(lat0), rad(lat), rad(lon) - rad(lon0)
    f1, f2 = rad(par[0]), rad(par[1])
    r, h = mpf(r), mpf(h)
    c = sin(f0) * sin(f) + cos(f0) * cos(f) * cos(d)
    east = cos(f) * sin(d)
    north = cos(f0) * sin(f) - sin(f0) * cos(f) * cos(d)
    cot = (lambda a: cos(a) / sin(a))
    if kind == "cartesian":
        return rad(wrap(mpf(lon) - lon0)) * r, rad(clamp(mpf(lat) - lat0)) * r, h
    if kind == "mercator":
        return r * d * cos(f1), r * log(tan(f / 2 + Q)) * cos(f1), h
    if kind == "lambert cylindrical":
        return r * d, r * (sin(f) - sin(f0)), h
    if kind == "gnomonic":
        return r * east / c, r * north / c, h
    if kind == "stereographic":
        return 2 * r * east / (1 + c), 2 * r * north / (1 + c), h
    if kind == "orthographic":
        return r * east, r * north, h
    if kind == "postel":
        s = sqrt(east**2 + north**2)
        return r * acos(c) * east / s, r * acos(c) * north / s, h
    if kind == "lambert azimuthal":
        if lat0 == 90:
            s = 2 * r * sin(Q - f / 2)
            return s * sin(d), -s * cos(d), h
        if lat0 == -90:
            s = 2 * r * cos(Q - f / 2)
            return s * sin(d), s * cos(d), h
        k = r * sqrt(2 / (1 + c))
        return k * east, k * north, h
    if kind == "lambert conic conformal":
        if par[0] == par[1]:
            n = sin(f1)
            rho = rho0 = r * cot(f0) * (tan(Q - f / 2) / tan(Q - f1 / 2)) ** n
        else:
            n = log(cos(f1) / cos(f2)) / log(tan(Q - f1 / 2) / tan(Q - f2 / 2))
            cone = (lambda a: r * cos(f1) / n * (tan(Q - a / 2) / tan(Q - f1 / 2)) ** n)
            rho, rho0 = cone(f), cone(f0)
        return rho * sin(n * d), rho0 - rho * cos(n * d), h
    if kind == "albers":
        if par[0] == par[1]:
            n = sin(f1)
            q = sqrt(n**2 + 1 - 2 * n * sin(f))
            return r * q * sin(n * d) / n, r * (cos(f1) - q) * cos(n * d) / n, h
        n = (sin(f1) + sin(f2)) / 2
        cone = (lambda a: r * sqrt(cos(f1) ** 2 + 2 * n * (sin(f1) - sin(a))) / n)
        return cone(f) * sin(n * d), cone(f0) - cone(f) * cos(n * d), mpf(0)
    if kind == "cassini-soldner":
        a, t = d * cos(f), tan(f) ** 2
        x = a - t * a**3 / 6 - (8 - t) * t * a**5 / 120
        y = f - f0 + tan(f) * (a**2 / 2 + (5 - t) * a**4 / 24)
        return r * x, r * y, h
    if kind == "bonne":
        rho = cot(f0) + f0 - f
        e = d * cos(f) / rho
        return r * rho * sin(e), r * (cot(f0) - rho * cos(e)), h
    if kind == "werner":
        if lat0 >= 0:
            rho = H - f
            e = d * cos(f) / rho
            return r * rho * sin(e), r * ((H - f0) - rho * cos(e)), h
        rho = H + f
        e = d * cos(f) / rho
        return r * rho * sin(e), r * (rho * cos(e) - (H + f0)), h
    if kind == "sanson-flamsteed":
        return r * d * cos(f), r * (f - f0), h
    if kind == "globe":
        lam = rad(lon)
        return (r + h) * cos(f) * cos(lam), (r + h) * cos(f) * sin(lam), (r + h) * sin(f)
    raise ValueError(kind)


def inverse(kind, base, par, r, world):
    lat0, lon0 = base
    f0, l0 = rad(lat0), rad(lon0)
    f1, f2 = rad(par[0]), rad(par[1])
    r = mpf(r)
    x, y, z = map(mpf, world)
    altitude = z
    if kind == "cartesian":
        return clamp(clamp(deg(y / r)) + lat0), wrap(wrap(deg(x / r)) + lon0), z
    if kind == "mercator":
        lam, phi = l0 + x / (r * cos(f1)), H - 2 * atan(exp(-y / (r * cos(f1))))
    elif kind == "lambert cylindrical":
        lam, phi = l0 + x / r, asin(sin(f0) + y / r)
    elif kind in ("stereographic", "orthographic", "lambert azimuthal"):
        rho = sqrt(x * x + y * y)
        c = {"stereographic": (lambda: 2 * atan(rho / (2 * r))),
             "orthographic": (lambda: asin(rho / r)),
             "lambert azimuthal": (lambda: 2 * asin(rho / (2 * r)))}[kind]()
        phi = asin(cos(c) * sin(f0) + y * sin(c) * cos(f0) / rho)
        if abs(lat0) != 90:
            lam = l0 + atan(x * sin(c) / (rho * cos(f0) * cos(c) - y * sin(f0) * sin(c)))
        else:
            toward = 1 if (lat0 > 0) == (kind == "stereographic") else -1
            lam = l0 + atan(toward * x / y)
    elif kind == "lambert conic conformal":
        n = log(cos(f1) / cos(f2)) / log(tan(Q + f2 / 2) / tan(Q + f1 / 2))
        big_f = cos(f1) * tan(Q + f1 / 2) ** n / n
        d = r * big_f / tan(Q + f0 / 2) ** n - y
        rho = sqrt(x * x + d * d)
        lam, phi = l0 + atan(x / d) / n, 2 * atan((r * big_f / rho) ** (1 / n)) - H
    elif kind == "albers":
        n = (sin(f1) + sin(f2)) / 2
        c = cos(f1) ** 2 + 2 * n * sin(f1)
        d = r * sqrt(c - 2 * n * sin(f0)) / n - y
        rho = sqrt(x * x + d * d)
        lam, phi = l0 + atan(x / d) / n, asin((c - (rho * n / r) ** 2) / (2 * n))
    elif kind == "globe":
        rho = sqrt(x * x + y * y)
        phi = (1 if z > 0 else -1) * (H - fabs(atan(rho / z)))
        lam = asin(y / rho)
        lam = PI - lam if x < 0 else lam
        altitude = sqrt(z * z + rho * rho) - r
    else:
        raise ValueError(kind)
    if isinstance(phi, mpc):
        return None  # beyond the edge of the map
    return clamp(deg(phi)), wrap(deg(lam)), altitude


SETTINGS = [
    ((45.0, 20.0), (30.0, 60.0), EARTH),
    ((-30.0, 0.0), (30.0, 30.0), 1.0),
    ((10.5, 350.0), (62.0, 17.5), EARTH),
]
POLES = [((90.0, 30.0), (30.0, 60.0), EARTH), ((-90.0, 0.0), (30.0, 60.0), 2.0)]
POINTS = [(0.0, 0.0, 0.0), (50.0, 33.0, 120.0), (-12.25, 5.5, 0.0), (37.5, 345.0, -4.0),
          (60.0, 100.0, 8848.0), (-40.0, 300.0, 10.0), (23.4375, 28.0, 0.5)]
FORWARD = ["cartesian", "mercator", "lambert cylindrical", "gnomonic", "stereographic",
           "orthographic", "postel", "lambert azimuthal", "lambert conic conformal", "albers",
           "cassini-soldner", "bonne", "werner", "sanson-flamsteed", "globe"]
WORLD = [(0.1, 0.2, 0.0), (-0.25, 0.125, 3.0), (0.3, -0.4, -1.0), (-0.05, -0.45, 0.25)]
INVERSE = ["cartesian", "mercator", "lambert cylindrical", "stereographic", "orthographic",
           "lambert azimuthal", "lambert conic conformal", "albers", "globe"]
ORIGIN = "# computed with mpmath 1.3.0 at 50 digits by tests/projection/make_tables.py"


def usable(kind, base, point):
    """Leaves out what has no value or loses all its digits."""
    f0, f, d = rad(base[0]), rad(point[0]), rad(point[1]) - rad(base[1])
    c = sin(f0) * sin(f) + cos(f0) * cos(f) * cos(d)
    if kind == "gnomonic":
        return fabs(c) > 0.1
    if kind in ("stereographic", "lambert azimuthal", "postel"):
        return -0.9 < c < 0.999
    if kind == "cassini-soldner":
        return fabs(d) < 1
    if kind in ("bonne", "werner", "lambert conic conformal", "albers") and fabs(base[0]) == 90:
        return False
    return True


def row(*fields):
    return ",".join(f if isinstance(f, str) else repr(float(f)) for f in fields)


def main(directory):
    lines = [ORIGIN, "name,base_lat,base_lon,first_par,second_par,radius,lat,lon,altitude,x,y,z"]
    for kind in FORWARD:
        for base, par, r in SETTINGS + POLES:
            for point in POINTS:
                if usable(kind, base, point):
                    world = forward(kind, base, par, r, point)
                    lines.append(row(kind, *base, *par, r, *point, *world))
    (directory / "projection_forward.csv").write_text("\n".join(lines) + "\n")

    lines = [ORIGIN, "name,base_lat,base_lon,first_par,second_par,radius,x,y,z,lat,lon,altitude"]
    for kind in INVERSE:
        for base, par, r in SETTINGS + POLES:
            if kind in ("lambert conic conformal", "albers"):
                if par[0] == par[1] or abs(base[0]) == 90:
                    continue
            for x, y, z in WORLD:
                world = (x * r, y * r, z * r if kind == "globe" else z)
                if kind == "globe" and z == 0:
                    continue
                point = inverse(kind, base, par, r, world)
                if point:
                    lines.append(row(kind, *base, *par, r, *world, *point))
    (directory / "projection_inverse.csv").write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]))
