"""Reads a DXF file with ezdxf and prints what it holds, one tab-separated line per item:

    EXTMIN <x> <y>
    EXTMAX <x> <y>
    LAYERS <names declared in the table, comma-separated>
    POLYLINE <layer> <color> <x y z, one triple after another>
    3DFACE <layer> <color> <x y z of vtx0 .. vtx3>
    <other type> <layer> <color>

Exits with status 1 and the reader's message on standard error when ezdxf can't read the file.
"""
import sys

import ezdxf


def numbers(points):
    return " ".join(repr(float(c)) for p in points for c in p)


def main(path):
    try:
        doc = ezdxf.readfile(path)
    except Exception as error:  # the reader's own verdict is the test's message
        print(f"unreadable: {error}", file=sys.stderr)
        return 1
    for name in ("$EXTMIN", "$EXTMAX"):
        value = doc.header.get(name)
        if value is not None:
            print(f"{name[1:]}\t{numbers([value[:2]])}")
    print("LAYERS\t" + ",".join(layer.dxf.name for layer in doc.layers))
    for entity in doc.modelspace():
        kind = entity.dxftype()
        head = f"{kind}\t{entity.dxf.layer}\t{entity.dxf.color}"
        if kind == "POLYLINE":
            print(f"{head}\t{numbers(v.dxf.location for v in entity.vertices)}")
        elif kind == "3DFACE":
            corners = [entity.dxf.get(f"vtx{k}") for k in range(4)]
            print(f"{head}\t{numbers(corners)}")
        else:
            print(head)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
