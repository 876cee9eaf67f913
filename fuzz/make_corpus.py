#!/usr/bin/env python3
"""Writes the fuzz targets' seed corpora and dictionaries from the formats they read.

Usage: make_corpus.py [OUT_DIR]  (default fuzz/corpus: a folder per target, TARGET.dict beside)
"""
import os
import struct
import sys

GUN_KEYS = ["TypeName", "FullName", "Caliber", "ROF", "MuzzleVel", "AmmoWt", "WarheadWt",
            "Reliability", "Accuracy", "AddLight", "MaxLightRange", "FireColor",
            "GunFireEffect", "GunFireSound", "EffectClassName", "EffectTime", "TracerTexture",
            "TracerSize", "TracerDistFactor", "TracerLength", "MaxVisibleDist",
            "MaxStreakVisibleDist"]


def gun_section(number, name):
    values = {"TypeName": name, "FullName": name + " gun", "Caliber": "7.62", "ROF": "600",
              "MuzzleVel": "800", "AmmoWt": "0.025", "WarheadWt": "0.01", "AddLight": "TRUE",
              "FireColor": "1,0.5,0.25"}
    lines = ["[GunData%03d]" % number]
    lines += ["%s=%s" % (key, values.get(key, "1.5")) for key in GUN_KEYS]
    return "\n".join(lines) + "\n"


def catalog(files, extensions=None):
    """The catalog layout: header, file table, extension table, then the data end to end."""
    names = [name.encode() + b"\0" for name, _ in files]
    if extensions is None:
        extensions = []
        for name, _ in files:
            ext = name.rsplit(".", 1)[1].upper() if "." in name else ""
            if ext and ext not in extensions:
                extensions.append(ext)
    ext_table = b"".join(struct.pack("<i", len(e) + 1) + e.encode() + b"\0" for e in extensions)
    table_size = sum(8 + len(n) for n in names)
    offset = 28 + table_size + len(ext_table)
    data = b"".join(content for _, content in files)
    header = b"CAT\0" + bytes(12) + struct.pack("<iiI", len(files), len(extensions), len(data))
    file_table = b""
    for name, (_, content) in zip(names, files):
        file_table += struct.pack("<Ii", offset, len(name)) + name
        offset += len(content)
    return header + file_table + ext_table + data


def seeds(top):
    examples = open(os.path.join(top, "examples", "guns.ini"), "rb").read()
    small_ini = (b"; settings\n[Tessarine]\nTargetDirectory=.\\guns\nPositionX=10\n"
                 b"PositionY=-3\n[Values]\nColor=0.5,2,-1\nFlag=true\nWord=FALSE\n"
                 b"Number=  42abc\nFloat=1e3\nEmpty=\nSame=1\nSame=2\n[Values]\nLate=1\n")
    return {
        "ini_values": [small_ini, examples, b"GunData%03d\n[GunData001]\nA=1\n[GunData002]\n"],
        "ini_includes": [b"[A]\nx=1\n#include B.INI\n[A2]\ny=2\n@@[B]\nz=3\n#include C.INI\n"
                         b"@@[C]\n#include A.INI\nw=4\n",
                         b"#include D.INI\n@@@@@@[D]\nk=v\n"],
        "catalog": [catalog([("A.DAT", b"x" * 100), ("B.INI", b"[S]\nk=1\n" * 6)]),
                    catalog([("EMPTY.TXT", b""), ("ONE.TXT", b"1")]),
                    catalog([("NOEXT", b"abc"), ("LOST.BIN", b"def")], ["TXT"])],
        "paths": [b".\\guns\nfile\nINI", b"\\a.b\\c\nd.e\n.dat", b"..\\x.\n\\\n", b"\n\n\n"],
        "gun_file": [examples, (gun_section(1, "A") + gun_section(2, "B")).encode(),
                     (gun_section(1, "A") + gun_section(3, "C")).encode()],
    }


DICTIONARIES = {
    "ini": ["[", "]", "=", ";", "#include ", "\\x0a", "TRUE", "FALSE", "GunData", "%03d", ",",
            "@@"] + GUN_KEYS,
    "catalog": ["CAT\\x00", "\\x00\\x00\\x00\\x00", "\\xff\\xff\\xff\\xff", "\\x04\\x01\\x00\\x00",
                ".DAT", ".INI"],
    "paths": ["\\\\", ".\\\\", "..\\\\", ".", "INI", "\\x0a"],
}
TARGET_DICTIONARY = {"ini_values": "ini", "ini_includes": "ini", "gun_file": "ini",
                     "catalog": "catalog", "paths": "paths"}


def main():
    top = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(top, "fuzz", "corpus")
    for target, inputs in seeds(top).items():
        os.makedirs(os.path.join(out, target), exist_ok=True)
        for number, data in enumerate(inputs):
            with open(os.path.join(out, target, "seed%02d" % number), "wb") as f:
                f.write(data)
        words = DICTIONARIES[TARGET_DICTIONARY[target]]
        with open(os.path.join(out, target + ".dict"), "w") as f:
            f.writelines('"%s"\n' % word for word in words)


if __name__ == "__main__":
    main()
