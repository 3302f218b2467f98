#!/usr/bin/env python3
# %% [markdown]
# # The two-pass exchange, step by step
#
# A walk through what a host does when a user releases a part: ask tov, fetch
# what it asks for, ask again, and act on the answer. Run it whole
# (`python3 two_pass_exchange.py [EXAMPLES_FOLDER]`) or cell by cell in an
# editor that knows `# %%` cells. It uses the example documents in examples/.

# %%
import json
import sys
from pathlib import Path

import tov

examples = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
print("tov", tov.version())

# %% [markdown]
# ## Load the documents
# An engine holds its own rules, data model and logger; nothing is shared with
# other engines. It logs nowhere unless told (`tov.Engine(log="console")`).

# %%
engine = tov.Engine()
print(engine.load_datamodel_file(examples / "datamodel.json"))
print(engine.load_rules_file(examples / "rules.json"))

# %% [markdown]
# ## First pass: the edit alone
# Part P-100 goes from "In Review" to "Released". The host sends the object's
# attributes before and after, and no linked objects.

# %%
request = {
    "objectType": "Part",
    "initialAttributes": {"Number": "P-100", "Revision": "A", "Iteration": "A.3",
                          "Status": "In Review"},
    "targetAttributes": {"Status": "Released"},
}
first = engine.evaluate("edit", request)
print(json.dumps(first, indent=2))

# %% [markdown]
# A history link rule applies, and tov cannot judge it without the other
# members of the part's family: the answer is a Failure that marks
# "ObjectFamilyMembers" with "MissingData". `tov.missing_sections` names the
# sections to add.

# %%
missing = tov.missing_sections(first)
print("add:", missing)
assert missing == ["membersOfFamily"]

# %% [markdown]
# ## Second pass: the same request with the family
# The host fetches the other iterations from its server and sends the request
# again. Each linked object is keyed by its server id. An empty section would
# say that there are none.

# %%
request["membersOfFamily"] = {
    "srv-P-100-A.1": {"attributes": {"Number": "P-100", "Iteration": "A.1", "Status": "Obsolete"}},
    "srv-P-100-A.2": {"attributes": {"Number": "P-100", "Iteration": "A.2",
                                     "Status": "Cancelled"}},
}
second = engine.evaluate("edit", request)
print(json.dumps(second, indent=2))
assert second["Result"] == "Success"

# %% [markdown]
# ## Act on the approval
# "TriggerInitialization" is a map text such as "{ReleaseDate:Reset}": the
# attributes the host must initialize before it commits.

# %%
for attribute, value in tov.trigger_initialization(second).items():
    print(f"initialize {attribute} with {value}")

# %% [markdown]
# ## A refusal names the offending object
# Had iteration A.2 still been in work, the second answer would refuse the
# release and name it by its server id. It asks for nothing more.

# %%
request["membersOfFamily"]["srv-P-100-A.2"]["attributes"]["Status"] = "In Work"
refused = engine.evaluate("edit", request)
print(refused["ResultComment"])
assert refused["Result"] == "Failure" and tov.missing_sections(refused) == []

# %% [markdown]
# ## Which conflict resolutions may the user choose?
# An options query answers under "SelectedVersioningAttribute" with a list
# text; `tov.selected_versioning_attributes` reads it.

# %%
options = engine.evaluate("options", {
    "objectType": "Part",
    "initialAttributes": {"Number": "P-500", "Status": "In Work"},
    "targetAttributes": {"Status": "In Review"},
})
print(options["ResultComment"], tov.selected_versioning_attributes(options))

# %%
engine.close()
