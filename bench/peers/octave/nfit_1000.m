i = 1:1000;
x = i / 100;
y = 5 * exp(-0.3 * x) .* cos(2 * x + 0.4) + 0.01 * sin(97 * i);
model = @(a) a(1) * exp(-a(2) * x) .* cos(a(3) * x + a(4));
a = fminsearch(@(a) sumsq(y - model(a)), [4 0.2 2.1 0.3], optimset("TolX", 1e-9, "TolFun", 1e-14, "MaxFunEvals", 1e5, "MaxIter", 1e5));
printf("%.7f ", a); printf("\n%.7f\n", sqrt(sumsq(y - model(a)) / 996));
