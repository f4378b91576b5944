i = 1:1000;
m = sin(i' * (0.7 * i));
s = 0;
for k = 1:200
  m(1,1) = k;
  s = s + std(m(:)) + mean(m(:));
end
printf("%.10g\n", s);
