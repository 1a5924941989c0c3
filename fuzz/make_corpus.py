#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets from the shipped data.

    fuzz/make_corpus.py            # rewrites fuzz/corpus/<target>/

The seeds are committed; run this again after data/ changes. Seeds are kept small: libFuzzer
mutates small inputs faster, and every seed is a starting point, not a test.
"""
import pathlib
import xml.etree.ElementTree as ET

ROOT = pathlib.Path(__file__).resolve().parent.parent
DATA = ROOT / "data"
CORPUS = ROOT / "fuzz" / "corpus"
RECORD_SEPARATOR = "\x1e"


def shipped_types():
    library = DATA / "library"
    return sorted(p.name for p in library.iterdir() if (p / f"{p.name}.xml").is_file())


def definition(type_name):
    return ET.parse(DATA / "library" / type_name / f"{type_name}.xml").getroot()


def section(root, name):
    found = root.find(name)
    return [] if found is None else list(found)


def text_of(element, path):
    found = element.find(path)
    return None if found is None or found.text is None else found.text.strip()


def first_choice(attribute, list_name):
    choices = attribute.find(list_name)
    if choices is None or len(choices) == 0:
        return None
    return (choices[0].text or "").split(":")[0].strip()


def default_value(attribute, units):
    """What a new block of the type holds for the attribute, near enough for a seed."""
    for list_name in ("TYPES", "UNITS"):
        choice = first_choice(attribute, list_name)
        if choice is not None:
            return choice
    if attribute.get("UnitDependent") and units:
        value = text_of(attribute, f"DefaultValues/{units}")
        if value is not None:
            return value
    if attribute.get("DeviceDependent"):
        return "1"
    value = text_of(attribute, "DefaultValue")
    if value is not None:
        return value
    fields = [text_of(child, "DefaultValue") for child in attribute
              if child.find("DefaultValue") is not None]
    return " ".join(fields) if fields else "0"


def attribute_defaults(root):
    attributes = section(root, "Attributes")
    units = None
    for attribute in attributes:
        unit_list = attribute.find("UNITS")
        if unit_list is not None and len(unit_list) > 0:
            units = unit_list[0].tag
    return [(a.tag, default_value(a, units)) for a in attributes]


def ids_used(root):
    """Every type id the definition names, with the fields of the structures among them."""
    ids = []
    for element in root.iter():
        tag = element.tag.upper()
        text = (element.text or "").strip()
        if tag in ("SNVTTYPE", "SNVTCOMPATIBILITYLIST"):
            ids += [part.strip() for part in text.split(",") if part.strip()]
        elif element.tag in ("TYPES", "UNITS"):
            ids += [(c.text or "").split(":")[0].strip() for c in element]
            ids += [c.get("Differential") for c in element if c.get("Differential")]
    return ids


def dictionary_subset(ids):
    dictionary = ET.parse(DATA / "snvts.xml").getroot()
    wanted, pending = set(), list(ids)
    while pending:
        type_id = pending.pop()
        if type_id in wanted:
            continue
        wanted.add(type_id)
        entry = dictionary.find(f"SNVT_{type_id}")
        if entry is not None and entry.find("Fields") is not None:
            pending += [(f.text or "").strip() for f in entry.find("Fields")]
    subset = ET.Element("SNVTS")
    for entry in dictionary:
        if entry.tag.startswith("SNVT_") and entry.tag[5:] in wanted:
            subset.append(entry)
    return ET.tostring(subset, encoding="unicode")


def project_block(type_name, root, number):
    block = ET.Element(type_name)
    ET.SubElement(block, "UserName").text = f"{type_name.title().replace('_', ' ')} {number}"
    ET.SubElement(block, "X_Position").text = "120.5" if number % 2 else "80"
    ET.SubElement(block, "Y_Position").text = "64,25" if number % 3 == 0 else "40"
    ET.SubElement(block, "CDB").text = ""
    attributes = ET.SubElement(block, "Attributes")
    for name, value in attribute_defaults(root):
        ET.SubElement(attributes, name).text = value
    outputs = section(root, "OutReferences")
    if outputs:
        shown = ET.SubElement(block, "Outputs")
        ET.SubElement(shown, outputs[0].tag).set("IsDisplayable", "1")
    return block


def write(target, name, text):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(text.encode("utf-8"))


def main():
    for folder in CORPUS.glob("*"):
        for seed in folder.glob("*"):
            seed.unlink()

    types = shipped_types()
    whole_project = ET.Element("Project")
    index = 0
    for number, type_name in enumerate(types, start=1):
        root = definition(type_name)
        write("definition", f"{type_name}.xml",
              (DATA / "library" / type_name / f"{type_name}.xml").read_text(encoding="utf-8"))
        write("dictionary", f"{type_name}.xml", dictionary_subset(ids_used(root)))

        project = ET.Element("Project")
        project.append(project_block(type_name, root, number))
        write("project", f"{type_name}.xml", ET.tostring(project, encoding="unicode"))
        whole_project.append(project_block(type_name, root, number))

        records = []
        for name, value in attribute_defaults(root):
            records.append(f"{index}:{value}")
            index += 1
        if records:
            write("values", f"{type_name}.txt", RECORD_SEPARATOR.join(records))

    write("project", "ALL_TYPES.xml", ET.tostring(whole_project, encoding="unicode"))
    write("dictionary", "snvts.xml", (DATA / "snvts.xml").read_text(encoding="utf-8"))
    write("values", "edges.txt", RECORD_SEPARATOR.join([
        "0:1,5", "1:-0", "2:1E+20", "3:&HFF", "4:65536", "5:-32769", "6:3.4028236E+38",
        "7:  12  ", "8:a b c d", "9:\u00e9\u20ac\u00fc", "10:NoTextField", "11:", "12:.5",
    ]))


if __name__ == "__main__":
    main()
