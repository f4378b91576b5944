a = sin((1:300)' * (0.7 * (1:200)));
s = 0;
for k = 1:5
  [u, w, v] = svd(a, "econ");
  s = s + max(diag(w));
end
printf("%.10g\n", s);
