#!/usr/bin/env python3
"""Writes a reproducible day of DX-cluster spots with sporadic-E openings.

    make_es_day.py OUT [SEED]

One session from 0000Z to 2359Z as a node sends it (CR LF, time order):
HF spots without locators all day, meteor-scatter and tropo spots on 2 m,
and between 0800Z and 2100Z fourteen Es clouds over Europe and the
Mediterranean that drift, grow and fade. A cloud is spotted on a band only
while its MUF for the spot's path (secant law, Es layer at 110 km) reaches
the band, so 6 m comes first, 4 m later, 2 m only at the peaks of the
strongest clouds. Some clouds lie beyond the horizon of JO62QM, some beyond
1,500 km. Comments come in the styles people type, one spot in eight names
one locator only. The same seed always gives the same bytes, for counting
the Es watch's alerts with two builds:

    make_es_day.py /tmp/day.txt
    zkr_muf_cli --locator JO62QM --watch --watch-bands 50,70,144 /tmp/day.txt
"""
import math
import random
import sys

R = 6367.0
LAYER = 110.0
OWN = "JO62QM"


def to_latlon(loc):
    lon = (ord(loc[0]) - 65) * 20 - 180 + int(loc[2]) * 2 + (ord(loc[4]) - 65 + 0.5) / 12
    lat = (ord(loc[1]) - 65) * 10 - 90 + int(loc[3]) + (ord(loc[5]) - 65 + 0.5) / 24
    return lat, lon


def to_locator(lat, lon):
    lon += 180
    lat += 90
    return (chr(65 + int(lon // 20)) + chr(65 + int(lat // 10)) + str(int(lon % 20 // 2)) +
            str(int(lat % 10)) + chr(65 + int(lon % 2 * 12)) + chr(65 + int(lat % 1 * 24)))


def destination(lat, lon, course, km):
    a, p, c = km / R, math.radians(lat), math.radians(course)
    lat2 = math.asin(math.sin(p) * math.cos(a) + math.cos(p) * math.sin(a) * math.cos(c))
    lon2 = math.radians(lon) + math.atan2(math.sin(c) * math.sin(a) * math.cos(p),
                                          math.cos(a) - math.sin(p) * math.sin(lat2))
    return math.degrees(lat2), (math.degrees(lon2) + 540) % 360 - 180


def distance(a, b):
    p1, p2 = math.radians(a[0]), math.radians(b[0])
    d = math.radians(b[1] - a[1])
    cosine = math.sin(p1) * math.sin(p2) + math.cos(p1) * math.cos(p2) * math.cos(d)
    return R * math.acos(max(-1.0, min(1.0, cosine)))


def secant(path_km):
    """MUF / critical frequency of one hop of that length."""
    half = path_km / R / 2
    elevation = math.atan2(math.cos(half) - R / (R + LAYER), math.sin(half))
    incidence = math.asin(R * math.cos(elevation) / (R + LAYER))
    return 1 / math.cos(incidence)


PREFIXES = ["DL", "DK", "OK", "OM", "SP", "HA", "S5", "9A", "I", "IK", "F", "EA", "EA7", "CT",
            "G", "GM", "EI", "PA", "ON", "OZ", "SM", "OH", "LA", "YO", "LZ", "SV", "IS0", "EA6",
            "9H", "CN8", "YU", "E7", "UR", "LY", "ES", "YL", "HB9", "OE"]
HF = [7074.0, 10136.0, 14074.0, 14195.0, 18100.0, 21074.0, 21295.0, 24915.0, 28074.0, 28495.0]
HF_TEXT = ["CQ", "tnx QSO", "FT8 -12dB", "CW 599", "up 2", "pse QSL", "", "loud", "RTTY"]


def call(rng):
    prefix = rng.choice(PREFIXES)
    digit = "" if prefix[-1].isdigit() else str(rng.randrange(10))
    return prefix + digit + "".join(rng.choice("ABCDEFGHIJKLMNOPQRSTUVWXYZ")
                                    for _ in range(rng.choice([2, 3, 3])))


def line(spotter, khz, dx, comment, minute):
    text = ("DX de " + spotter + ":").ljust(15) + ("%.1f" % khz).rjust(9) + "  "
    return text + dx.ljust(13) + comment[:30].ljust(31) + "%02d%02dZ" % divmod(minute, 60)


def es_comment(rng, one, two):
    four = rng.random() < 0.4
    a, b = (one[:4], two[:4]) if four else (one, two)
    if rng.random() < 0.12:
        return rng.choice(["%s es" % a, "Es %s" % a, "ES 55 %s" % a])
    return rng.choice(["%s ES %s", "%s<ES>%s", "Es %s-%s", "%s es %s tnx", "%s (ES) %s",
                       "ES %s %s"]) % (a, b)


class Cloud:
    def __init__(self, rng, own):
        # Over land and the seas around Europe, 500 to 2,000 km away.
        while True:
            lat, lon = destination(own[0], own[1], rng.uniform(0, 360), rng.uniform(500, 2000))
            if 35 <= lat <= 62 and -10 <= lon <= 35:
                break
        self.lat, self.lon = lat, lon
        self.course = rng.uniform(0, 360)
        self.speed = rng.uniform(0.5, 1.5)  # km a minute
        self.start = rng.randrange(8 * 60, 19 * 60)
        self.length = rng.randrange(30, 160)
        strong = rng.random() < 0.35
        self.peak = rng.uniform(26, 36) if strong else rng.uniform(9, 17)

    def critical(self, minute):
        """foEs at `minute`, 0 outside the cloud's life."""
        t = (minute - self.start) / self.length
        return self.peak * math.sin(math.pi * t) if 0 < t < 1 else 0

    def centre(self, minute):
        return destination(self.lat, self.lon, self.course, self.speed * (minute - self.start))


def main():
    out = sys.argv[1]
    rng = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 1)
    own = to_latlon(OWN)
    clouds = [Cloud(rng, own) for _ in range(14)]
    lines = []
    for minute in range(24 * 60):
        if rng.random() < 0.8:
            lines.append(line(call(rng), rng.choice(HF) + rng.randrange(0, 30), call(rng),
                              rng.choice(HF_TEXT), minute))
        if rng.random() < 0.05:
            one = to_locator(*destination(own[0], own[1], rng.uniform(0, 360),
                                          rng.uniform(100, 900)))
            two = to_locator(*destination(own[0], own[1], rng.uniform(0, 360),
                                          rng.uniform(100, 900)))
            lines.append(line(call(rng), rng.choice([144360.0, 144174.0, 432200.0]), call(rng),
                              "%s %s %s" % (one, rng.choice(["MS", "TR", "tropo"]), two), minute))
        for cloud in clouds:
            fo = cloud.critical(minute)
            if fo <= 0:
                continue
            lat, lon = cloud.centre(minute)
            for band, khz, tries, chance in ((50, 50150.0, 3, 0.45), (70, 70200.0, 1, 0.2),
                                             (144, 144300.0, 2, 0.5)):
                for _ in range(tries):
                    path = rng.uniform(700, 2200)
                    if rng.random() > chance or fo * secant(path) < band + 0.5:
                        continue
                    course = rng.uniform(0, 180)
                    one = destination(lat, lon, course, path / 2)
                    two = destination(lat, lon, course + 180, path / 2)
                    lines.append(line(call(rng), khz + rng.randrange(0, 200), call(rng),
                                      es_comment(rng, to_locator(*one), to_locator(*two)),
                                      minute))
    with open(out, "wb") as f:
        f.write(("\r\n".join(lines) + "\r\n").encode("latin-1"))
    far = sum(1 for c in clouds if distance(own, (c.lat, c.lon)) > 1180)
    print("%d lines, %d clouds (%d beyond the horizon)" % (len(lines), len(clouds), far))


if __name__ == "__main__":
    main()
