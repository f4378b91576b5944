f = @(t, y) [10 * (y(2) - y(1)); y(1) * (28 - y(3)) - y(2); y(1) * y(2) - 8 / 3 * y(3)];
[t, y] = ode45(f, [0 50], [1 1 1], odeset("RelTol", 1e-10, "AbsTol", 1e-10));
printf("%.3g\n", sumsq(y(end, :)) > 0);
