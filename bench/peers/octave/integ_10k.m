s = 0;
for k = 1:10000
  s = s + quadgk(@(x) sin(x) + k, 0, 2 * pi, "RelTol", 1e-10, "AbsTol", 0);
end
printf("%.10g\n", s);
