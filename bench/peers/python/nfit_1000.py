import numpy as np
from scipy.optimize import curve_fit

i = np.arange(1.0, 1001)
x = i / 100
y = 5 * np.exp(-0.3 * x) * np.cos(2 * x + 0.4) + 0.01 * np.sin(97 * i)


def model(x, a, b, c, d):
    return a * np.exp(-b * x) * np.cos(c * x + d)


a = curve_fit(model, x, y, p0=[4, 0.2, 2.1, 0.3], ftol=1e-14, xtol=1e-14)[0]
s = np.sqrt(sum((y - model(x, *a)) ** 2) / 996)
print(*["%.7f" % v for v in a])
print("%.7f" % s)
