from scipy.integrate import solve_ivp


def lorenz(t, y):
    return [10 * (y[1] - y[0]), y[0] * (28 - y[2]) - y[1], y[0] * y[1] - 8 / 3 * y[2]]


y = solve_ivp(lorenz, (0, 50), [1, 1, 1], method="DOP853", rtol=1e-10, atol=1e-10).y[:, -1]
print("%.3g" % (sum(y * y) > 0))
