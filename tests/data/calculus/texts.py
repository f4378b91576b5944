"""Functions as rows write them: x^2 is a power, v[1] the first element of v, ";" stands between
several functions."""

NAMES = "sin cos tan asin acos atan atan2 sinh cosh tanh exp sqrt erf".split()


class Elements(tuple):
    """A vector whose elements count from 1."""

    def __getitem__(self, index):
        return super().__getitem__(index - 1)


def function_of(text, names, *variables):
    """A function of the variables that gives the values of all expressions of the text."""
    code = compile("(" + text.replace("^", "**").replace(";", ",") + ",)", text, "eval")

    def values(*at):
        return eval(code, names, dict(zip(variables, at)))

    return values


def mpmath_names():
    import mpmath as mp

    names = {name: getattr(mp, name) for name in NAMES}
    return names | {"abs": abs, "ln": mp.log, "gammaln": mp.loggamma, "bessj": mp.besselj}
