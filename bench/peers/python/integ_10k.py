import math

from scipy.integrate import quad

s = 0.0
for k in range(1, 10001):
    s += quad(lambda x: math.sin(x) + k, 0, 2 * math.pi, epsrel=1e-10, epsabs=0)[0]
print("%.10g" % s)
