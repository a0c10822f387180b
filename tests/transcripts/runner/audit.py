"""What may be left when the program ends, by the host's own account."""

_MAY_REMAIN = {"bstrs": 1, "safearrays": 0, "handles": 0, "coercions": 0}

# What the one channel object holds: a connection, an opened class and an enumerator with its instance.
_INTERFACES_THAT_MAY_REMAIN = {
    "IWbemLocator": 1,
    "IWbemServices": 1,
    "IWbemClassObject": 2,
    "IEnumWbemClassObject": 2,
}
_STORES_THAT_MAY_REMAIN = {"gDsmChannel"}


def audit_problems(accounts):
    """What is wrong with the accounts of one run: each leak, or that there is not just one account."""
    if len(accounts) != 1:
        return [f"{len(accounts)} audit lines where the host writes one"]
    account = accounts[0]
    problems = _excesses("", account, _MAY_REMAIN, _MAY_REMAIN)
    interfaces = account["interfaces"]
    problems += _excesses("interface ", interfaces, interfaces, _INTERFACES_THAT_MAY_REMAIN)
    problems += [f"store {name}: {count} left" for name, count in account["stores"].items()
                 if count > 0 and name not in _STORES_THAT_MAY_REMAIN]
    return problems


def _excesses(kind, counts, names, limits):
    return [f"{kind}{name}: {counts[name]} where {limits.get(name, 0)} may be" for name in names
            if counts.get(name, 0) > limits.get(name, 0)]


def calls(accounts, operation):
    """How often the program called an operation of the machine."""
    return sum(account["calls"].get(operation, 0) for account in accounts)
