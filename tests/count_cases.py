"""Prints "N passed, N failed" for the folder of reports given: the cases of each test program, and programs that
left no report (they crashed, or count no cases) as one case each."""

import sys
import xml.etree.ElementTree as xml
from pathlib import Path

folder = Path(sys.argv[1])
passed = failed = 0
for program in xml.parse(folder / "ctest.xml").getroot().iter("testcase"):
    succeeded = program.get("status") == "run"
    report = folder / f"test-{program.get('name')}.xml"
    cases = failures = 0
    if report.exists():
        root = xml.parse(report).getroot()
        skipped = sum(1 for case in root.iter("testcase")
                      if case.get("result") == "skipped" or case.get("status") == "notrun")
        cases = int(root.get("tests")) - skipped
        failures = int(root.get("failures")) + int(root.get("errors", 0))
    if cases == 0 or (failures == 0 and not succeeded):
        cases, failures = cases + 1, failures + (not succeeded)
    passed, failed = passed + cases - failures, failed + failures
print(f"{passed} passed, {failed} failed")
