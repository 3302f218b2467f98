"""Reading the list and map texts inside an answer.

The library writes a list as "[a,b]" (names joined by a comma alone) and a
map as "{Name:Value, Name2:Value2}" (pairs joined by a comma and a blank). It
quotes and escapes nothing, so a name that holds such a separator cannot be
told apart; the readers below take the texts exactly as the library writes
them.
"""

from typing import Dict, List, Mapping

SELECTED_VERSIONING_ATTRIBUTE = "SelectedVersioningAttribute"
TRIGGER_INITIALIZATION = "TriggerInitialization"
MISSING_DATA = "MissingData"

# The keyword that asks for more data, and the request section that brings it.
_SECTIONS_BY_KEYWORD = {
    "ObjectFamilyMembers": "membersOfFamily",
    "ManualLinkAncestors": "manualLinkAncestors",
}


def parse_list(text: str) -> List[str]:
    """"[Revision,Overwrite]" -> ["Revision", "Overwrite"]. The library
    writes no options as "[]" or as an empty text; both give []."""
    if text.startswith("["):
        text = text[1:]
    if text.endswith("]"):
        text = text[:-1]
    return text.split(",") if text else []


def parse_map(text: str) -> Dict[str, str]:
    """"{ReleaseDate:Reset, Iteration:Next}" -> {"ReleaseDate": "Reset",
    "Iteration": "Next"}; "{}" gives {}. A name ends at its first colon. A
    piece without a colon was part of the value before it, which held ", "."""
    if text.startswith("{"):
        text = text[1:]
    if text.endswith("}"):
        text = text[:-1]
    pairs: Dict[str, str] = {}
    last = None
    for piece in text.split(", ") if text else []:
        name, colon, value = piece.partition(":")
        if colon or last is None:
            pairs[name] = value
            last = name
        else:
            pairs[last] += ", " + piece
    return pairs


def selected_versioning_attributes(answer: Mapping[str, str]) -> List[str]:
    """The conflict resolution options of an options answer: versioning
    attributes and the overwrite label; [] when it names none."""
    return parse_list(answer.get(SELECTED_VERSIONING_ATTRIBUTE, ""))


def trigger_initialization(answer: Mapping[str, str]) -> Dict[str, str]:
    """The attributes that the host must initialize after an approved edit,
    each with its value; {} when there are none."""
    return parse_map(answer.get(TRIGGER_INITIALIZATION, ""))


def missing_sections(answer: Mapping[str, str]) -> List[str]:
    """The sections ("membersOfFamily", "manualLinkAncestors") to add to a
    refused request before sending it again; [] when the answer is final."""
    if answer.get("Result") == "Success":
        return []
    return [section for keyword, section in _SECTIONS_BY_KEYWORD.items()
            if answer.get(keyword) == MISSING_DATA]
