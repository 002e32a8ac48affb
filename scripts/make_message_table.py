#!/usr/bin/env python3
"""Writes the Windows message-table source (.mc, for windmc) from the list of
error codes, so that the resource and the Linux table come from one place.

    make_message_table.py file_encoder_errors.inc messages.mc
"""
import re
import sys

ENTRY = re.compile(r'^FE_ERROR_(?:CODE\(\w+, |MESSAGE\()(\d+), "(.*)"\)$')


def main(source, target):
    entries = []
    with open(source, encoding="utf-8") as lines:
        for line in lines:
            match = ENTRY.match(line.strip())
            if match:
                entries.append((int(match.group(1)), match.group(2)))
    if not entries:
        sys.exit(f"{source}: no error codes found")
    out = [
        "SeverityNames=(Success=0x0 CoError=0x2:STATUS_SEVERITY_COERROR)",
        "FacilityNames=(Itf=0x4:FACILITY_ITF)",
        "LanguageNames=(English=0x409:MSG00409)",
        "",
    ]
    for number, text in sorted(entries):
        out += [f"MessageId={number}", "Severity=CoError", "Facility=Itf", "Language=English",
                text, "."]
    with open(target, "w", encoding="ascii", newline="\n") as mc:
        mc.write("\n".join(out) + "\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
