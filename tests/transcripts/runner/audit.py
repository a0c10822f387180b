"""What may be left when the program ends, by the host's own account."""

# What the one channel object holds at exit: a connection, an opened class and an enumerator with its instance.
_MAY_REMAIN = {
    "bstrs": 1,
    "interface IWbemLocator": 1,
    "interface IWbemServices": 1,
    "interface IWbemClassObject": 2,
    "interface IEnumWbemClassObject": 2,
    "store gDsmChannel": 1,
}


# How the host ends a run that it refuses to begin; nothing is accounted for then.
_REFUSED = 2


def audit_problems(accounts, status, program):
    """What is wrong with the accounts of one run with this exit status: each leak, or that there is not just one account."""
    if not accounts and (status == _REFUSED or not program.must_account()):
        return []
    if len(accounts) != 1:
        return [f"{len(accounts)} audit lines where the host writes one"]
    account = accounts[0]
    counts = {name: account[name] for name in ("bstrs", "safearrays", "coercions")}
    counts["handles"] = account.get("handles", 0)
    counts |= {f"interface {name}": count for name, count in account["interfaces"].items()}
    counts |= {f"store {name}": count for name, count in account["stores"].items()}
    return [f"{name}: {count} where {_MAY_REMAIN.get(name, 0)} may be" for name, count in counts.items()
            if count > _MAY_REMAIN.get(name, 0)]
