# SPDX-License-Identifier: MIT
"""The queries of the dashboard, with all machines chosen."""

import json

from machines import ROOT

DASHBOARD = json.loads((ROOT / "packaging/grafana/tarnwick.dashboard.json").read_text())


def queries():
    """Title and text of each."""
    return [(panel["title"], target["expr"].replace("$instance", ".*"))
            for panel in DASHBOARD["panels"] for target in panel["targets"]]
